// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/COutputStream.h"
#include "Core/CZipStream.h"

namespace qrb {

/// Deflating writer. The data is complete only after close().
class COutputZipStream : public COutputStream, public CZipStream {
public:
    static constexpr int kDefaultLevel = -1;

    COutputZipStream() = default;
    /// Closes; a failure to do so is logged and dropped.
    ~COutputZipStream() override;

    /// `parent` must outlive the open stream. `level` 0 to 9, or zlib's default.
    CErrorPtr open(COutputStream& parent, int level = kDefaultLevel);
    CErrorPtr write(const void* buffer, std::size_t count) override;
    /// Writes what is pending and the end of the data.
    CErrorPtr close();

private:
    CErrorPtr finish();
    CErrorPtr flushBuffer();

    COutputStream* m_parent = nullptr;
};

} // namespace qrb
