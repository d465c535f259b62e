// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Converters/CAudioParamConverterBW.h"

#include "Audio/Converters/ConverterMath.h"
#include "Core/CNumberText.h"

namespace qrb {

namespace {

/// What a bound reads as where its text is no number: narrow, but not nothing.
constexpr double kNeutralOctaves = 0.001;

} // namespace

double CAudioParamConverterBW::parseValue(const CAudioParamInfo& info, int c, const CString& text, bool* outOk) const
{
    return parseScaledLimited(info, c, text, 1.0, outOk);
}

double CAudioParamConverterBW::parseBound(const CAudioParamInfo&, int, const CString& text, bool* outOk) const
{
    return parseScaled(text, 1.0, kNeutralOctaves, outOk);
}

void CAudioParamConverterBW::formatValue(CString& out, const CAudioParamInfo&, int, double value,
                                         const CAudioParamData*, EValueStyle style) const
{
    out = formatFixed(value, style == EValueStyle::exact ? 3 : 2);
}

double CAudioParamConverterBW::fromNormal(const CAudioParamInfo& info, int c, double n) const
{
    return squareFromNormal(info, c, n);
}

double CAudioParamConverterBW::toNormal(const CAudioParamInfo& info, int c, double value) const
{
    return squareToNormal(info, c, value);
}

double CAudioParamConverterBW::toDisplay(const CAudioParamInfo& info, int c, double n) const
{
    return fromNormal(info, c, n);
}

} // namespace qrb
