// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CString.h"

namespace qrb {

/// What split() does with pieces that hold nothing.
enum class EEmpty { drop, keep };

/// The pieces of `text` between separators, in order, not trimmed. With EEmpty::keep the empty text gives one empty piece.
[[nodiscard]] CArray<CString> split(const CString& text, char16_t separator, EEmpty empty = EEmpty::drop);

} // namespace qrb
