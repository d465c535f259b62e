// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CFileBase.h"
#include "Core/CPosInputStream.h"

namespace qrb {

/// Reader over a file.
class CFileReader : public CFileBase, public CPosInputStream {
public:
    /// Closes what was open. "-" is standard input. With `forWriting` the file is opened for both and created when
    /// missing.
    CErrorPtr open(const CString& name, bool forWriting = false);

    CErrorPtr skip(std::uint64_t count) override;
    CErrorPtr read(void* buffer, std::size_t count) override;
    CErrorPtr readAvailable(void* buffer, std::size_t& count) override;
};

} // namespace qrb
