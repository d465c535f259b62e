// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CString.h"

namespace qrb {

/// Small helpers around the system the module runs on.
class CSystem {
public:
    /// Whether a plain file stands at `path`.
    [[nodiscard]] static bool fileExists(const CString& path);
    /// Matches a whole text: "*" is any run, also none, "?" one character; case counts. Time grows with the product of
    /// the lengths at most, whatever the pattern.
    [[nodiscard]] static bool wildcardMatch(const CString& text, const CString& pattern) noexcept;
    /// Folder of the file that holds this code, with "/" as separator and none at the end; empty if unknown.
    [[nodiscard]] static CString getModuleFolder();
};

} // namespace qrb
