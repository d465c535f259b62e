// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CInputStream.h"
#include "Core/CZipStream.h"

namespace qrb {

/// Inflating reader. It reads its parent ahead by up to its buffer's size, and closing gives nothing back.
class CInputZipStream : public CInputStream, public CZipStream {
public:
    CInputZipStream() = default;
    /// Closes; a failure to do so is logged and dropped.
    ~CInputZipStream() override;

    /// `parent` must outlive the open stream.
    CErrorPtr open(CInputStream& parent);
    CErrorPtr close();

    CErrorPtr read(void* buffer, std::size_t count) override;
    CErrorPtr readAvailable(void* buffer, std::size_t& count) override;
    /// Fails unless all data has been read and the check value behind it is right.
    CErrorPtr requireEnd();

private:
    CErrorPtr inflateInto(void* buffer, std::size_t& count);

    CInputStream* m_parent = nullptr;
};

} // namespace qrb
