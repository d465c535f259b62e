// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CString.h"

namespace qrb {

/// Full path of a parameter named relative to a process: "freq" and ".freq" are its own, "^" climbs one level for each
/// sign, "/" starts at the root.
[[nodiscard]] CString resolveParamPath(const CString& processName, const CString& path);

/// The name under which the parameters of a process are known: its name without the positions ("#2") that tell
/// instances of one definition apart, since those share parameters and read them at elements of their own.
[[nodiscard]] CString paramProcessName(const CString& processName);

} // namespace qrb
