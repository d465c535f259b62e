// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CString.h"

#include <cstdint>

namespace qrb {

/// Name of the speaker of one bit of an arrangement mask; empty for a bit without one.
[[nodiscard]] const char* speakerName(std::uint32_t bit);
/// Names of the speakers of an arrangement mask, in their order.
[[nodiscard]] CArray<CString> speakerNames(std::uint64_t arrangement);
/// Whether a text is the name of any speaker.
[[nodiscard]] bool isSpeakerName(const CString& text);

} // namespace qrb
