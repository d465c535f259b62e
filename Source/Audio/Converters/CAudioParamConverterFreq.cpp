// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Converters/CAudioParamConverterFreq.h"

#include "Audio/Converters/ConverterMath.h"
#include "Core/CNumberText.h"

namespace qrb {

namespace {

double parseHertz(const CString& text, bool* outOk)
{
    const char16_t last = text.empty() ? u'\0' : text.at(text.length() - 1);
    if (last == u'k' || last == u'K')
        return parseScaled(text.substr(0, text.length() - 1), 1000.0, 0.0, outOk);
    return parseScaled(text, 1.0, 0.0, outOk);
}

CString formatKilo(double value, int decimals)
{
    return formatFixed(value * 0.001, decimals) + "k";
}

/// At most four characters up to 99 kHz.
CString formatCompact(double value)
{
    const std::int64_t tenths = roundHalfAway(value * 10.0);
    if (tenths < 10000)
        return formatFixed(value, 0);
    return formatKilo(value, tenths < 100000 ? 1 : 0);
}

CString formatNormal(double value)
{
    if (roundHalfAway(value * 10.0) < 1000)
        return formatFixed(value, 1);
    if (roundHalfAway(value) < 1000)
        return formatFixed(value, 0);
    return formatKilo(value, roundHalfAway(value * 0.1) < 1000 ? 2 : 1);
}

} // namespace

double CAudioParamConverterFreq::parseValue(const CAudioParamInfo& info, int c, const CString& text, bool* outOk) const
{
    bool ok = false;
    const double hertz = parseHertz(text, &ok);
    return answer(outOk, ok) ? limitToBounds(info, c, hertz) : lowBound(info, c);
}

double CAudioParamConverterFreq::parseBound(const CAudioParamInfo&, int, const CString& text, bool* outOk) const
{
    return parseHertz(text, outOk);
}

void CAudioParamConverterFreq::formatValue(CString& out, const CAudioParamInfo&, int, double value,
                                           const CAudioParamData*, EValueStyle style) const
{
    if (style == EValueStyle::exact)
        out = formatFixed(value, 2);
    else
        out = style == EValueStyle::compact ? formatCompact(value) : formatNormal(value);
}

double CAudioParamConverterFreq::toDisplay(const CAudioParamInfo& info, int c, double n) const
{
    return fromNormal(info, c, n);
}

} // namespace qrb
