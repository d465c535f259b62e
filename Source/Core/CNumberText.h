// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CString.h"

#include <cstdint>

namespace qrb {

/// Nearest integer, halves away from zero; saturates, NaN gives 0.
[[nodiscard]] std::int64_t roundHalfAway(double value) noexcept;
/// The same within 32 bits.
[[nodiscard]] std::int32_t roundToInt(double value) noexcept;

/// Reads a whole text as an integer: optional "-", then decimal digits, or "0x", "0X", "#" or "$" and hexadecimal ones.
/// Hexadecimal text may give all 32 bits, so "#FFFFFFFF" is -1. False, with `out` untouched, for other text and for
/// overflow.
[[nodiscard]] bool parseInteger(const CString& text, std::int32_t& out) noexcept;

/// Reads a whole text as a number: optional sign, digits with at most one "." or ",", optionally an exponent. A digit must
/// stand last in each section, so "5." fails and ".5" passes. False, with `out` untouched, for other text and for a value
/// that is not finite.
[[nodiscard]] bool parseNumber(const CString& text, double& out) noexcept;

/// Decimal text with exactly `decimals` (0 to 15) digits behind the point, rounded half away; no "-" before a zero.
[[nodiscard]] CString formatFixed(double value, int decimals);
[[nodiscard]] CString formatInteger(std::int64_t value);
/// Shortest text that reads back as the same double.
[[nodiscard]] CString formatShortest(double value);
/// Text around one conversion in the manner of printf ("%0.1f dB", "%+d", "%%"), with "." as point whatever the locale.
/// Conversions f, F, e, E, g, G take the value itself; d, i, u, x, X and c its nearest integer; others yield nothing.
[[nodiscard]] CString formatPattern(const char* pattern, double value);

} // namespace qrb
