// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace qrb {

class CAudioParamInfo;
class CString;

/// What the converters share: limits, straight and squared positions, numbers read in a scaled unit.

/// The declared bounds of component `c`; the lower may lie above the higher.
[[nodiscard]] double lowBound(const CAudioParamInfo& info, int c);
[[nodiscard]] double highBound(const CAudioParamInfo& info, int c);

/// `value` limited to the bounds of component `c`, in whichever order they are declared.
[[nodiscard]] double limitToBounds(const CAudioParamInfo& info, int c, double value);

/// Share of `part` in `whole`; 0 where the whole is nothing, as between equal bounds, so that a position is a number.
[[nodiscard]] double share(double part, double whole);

[[nodiscard]] double linearFromNormal(const CAudioParamInfo& info, int c, double n);
[[nodiscard]] double linearToNormal(const CAudioParamInfo& info, int c, double value);

/// Positions that spread the low end: the value runs with the square of the position.
[[nodiscard]] double squareFromNormal(const CAudioParamInfo& info, int c, double n);
[[nodiscard]] double squareToNormal(const CAudioParamInfo& info, int c, double value);

/// Decimals of a number in a narrow read-out: one below 10, none above.
[[nodiscard]] int compactDecimals(double shown);

/// Sets `*outOk` unless null, and returns `ok`.
bool answer(bool* outOk, bool ok);

/// A number times `scale`; `neutral` where the text is none.
[[nodiscard]] double parseScaled(const CString& text, double scale, double neutral, bool* outOk);

/// The same within the bounds of component `c`; the lower bound where the text is no number.
[[nodiscard]] double parseScaledLimited(const CAudioParamInfo& info, int c, const CString& text, double scale,
                                        bool* outOk);

} // namespace qrb
