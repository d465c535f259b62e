// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CString.h"

namespace qrb {

/// Numbers between commas, blanks around them left out. False where a piece is no number, not even an empty one: those
/// behind it would change their places. `out` then holds those before.
[[nodiscard]] bool parseNumberList(const CString& text, CArray<double, 8>& out);

} // namespace qrb
