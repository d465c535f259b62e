// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CString.h"

namespace qrb {

/// Longest short form of a state's name.
inline constexpr std::size_t kShortNameLength = 7;

/// Reads names of states, "Long|Short;Long|Short": pieces are trimmed, empty states dropped, short forms cut to
/// kShortNameLength, and made from the long form where none is given. Appends to both lists alike.
void parseStateNames(const CString& text, CArray<CString>& longNames, CArray<CString>& shortNames);

} // namespace qrb
