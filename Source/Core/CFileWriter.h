// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CFileBase.h"
#include "Core/CPosOutputStream.h"

namespace qrb {

/// Writer to a file.
class CFileWriter : public CFileBase, public CPosOutputStream {
public:
    /// Closes what was open. "-" is standard output, "-e" standard error. The file is created when missing; with
    /// `append` writing goes on at its end, otherwise its content is dropped.
    CErrorPtr open(const CString& name, bool append = false);

    CErrorPtr write(const void* buffer, std::size_t count) override;
};

} // namespace qrb
