// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CString.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace qrb {

/// State of zlib and the buffer of packed bytes; memory of both comes from CQrbMemAllocator.
class CZipStream : public CCheckedObject {
public:
    static constexpr std::size_t kBufferSize = 32768;

    CZipStream(const CZipStream&) = delete;
    CZipStream& operator=(const CZipStream&) = delete;

protected:
    struct CState;

    CZipStream();
    ~CZipStream() override;

    /// zlib's text for what went wrong last, or empty.
    [[nodiscard]] CString lastMessage() const;

    std::unique_ptr<CState> m_state; // null while closed
};

} // namespace qrb
