// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CString.h"

#include <cstdint>

namespace qrb {

/// Reads and writes the file of one data block so that a crash in the middle of a write loses nothing: the old content
/// stands beside the file, under the name with a dot before it, while the file is written in place.
class CAppDataFile {
public:
    /// `folder` ends in "/".
    CAppDataFile(const CString& folder, const CString& name);

    /// The block of the file, or, if that can't be decoded, of the copy beside it. False if neither gives one; what
    /// can't be decoded is logged.
    [[nodiscard]] bool read(std::uint32_t chunkId, CByteArray& out) const;
    /// Rewrites the file; false with the old block still readable. The folder exists.
    [[nodiscard]] bool write(std::uint32_t chunkId, const CByteArray& data) const;

private:
    [[nodiscard]] bool keepOldContent(std::uint32_t chunkId) const;

    CString m_path;
    CString m_copyPath;
};

} // namespace qrb
