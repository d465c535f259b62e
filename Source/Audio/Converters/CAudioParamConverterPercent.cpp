// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Converters/CAudioParamConverterPercent.h"

#include "Audio/Converters/ConverterMath.h"
#include "Core/CNumberText.h"

namespace qrb {

double CAudioParamConverterPercent::parseValue(const CAudioParamInfo& info, int c, const CString& text,
                                               bool* outOk) const
{
    return parseScaledLimited(info, c, text, 0.01, outOk);
}

double CAudioParamConverterPercent::parseBound(const CAudioParamInfo&, int, const CString& text, bool* outOk) const
{
    return parseScaled(text, 0.01, 0.0, outOk);
}

void CAudioParamConverterPercent::formatValue(CString& out, const CAudioParamInfo&, int, double value,
                                              const CAudioParamData*, EValueStyle style) const
{
    out = formatFixed(value * 100.0, style == EValueStyle::compact ? 0 : 1);
}

double CAudioParamConverterPercent::fromNormal(const CAudioParamInfo& info, int c, double n) const
{
    return linearFromNormal(info, c, n);
}

double CAudioParamConverterPercent::toNormal(const CAudioParamInfo& info, int c, double value) const
{
    return linearToNormal(info, c, value);
}

double CAudioParamConverterPercent::toDisplay(const CAudioParamInfo& info, int c, double n) const
{
    return fromNormal(info, c, n) * 100.0;
}

} // namespace qrb
