// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Converters/CAudioParamConverterRatio.h"

#include <cmath>

#include "Audio/Converters/ConverterMath.h"
#include "Core/CNumberText.h"
#include "Core/CTextSplit.h"

namespace qrb {

namespace {

/// What a bound reads as where its text is no ratio.
constexpr double kNeutralSlope = 0.5;

/// How far a slope stays away from 1, where compression and expansion meet.
constexpr double kLeastDistance = 0.001;

bool parseSlope(const CString& text, double& slope)
{
    const CArray<CString> pieces = split(text, ':', EEmpty::drop);
    double above = 0.0;
    double below = 1.0;
    if (pieces.size() < 1 || pieces.size() > 2 || !parseNumber(pieces[0].trimmed(), above) || above == 0.0)
        return false;
    if (pieces.size() == 2 && !parseNumber(pieces[1].trimmed(), below))
        return false;
    slope = below / above;
    if (std::abs(slope - 1.0) < kLeastDistance)
        slope = slope > 1.0 ? 1.0 + kLeastDistance : 1.0 - kLeastDistance;
    return true;
}

} // namespace

CErrorPtr CAudioParamConverterRatio::init()
{
    QRB_TRY(CAudioParamConverter::init());
    m_decimals = getAttrInt("decimals");
    if (m_decimals < 1 || m_decimals > 10)
        return QRB_ERROR("@qrbstr_CAudioParamConverterRatio_init_InvalidDecimals Invalid decimals %1 specified.",
                         m_decimals);
    return nullptr;
}

double CAudioParamConverterRatio::parseValue(const CAudioParamInfo& info, int c, const CString& text, bool* outOk) const
{
    double slope = 0.0;
    return answer(outOk, parseSlope(text, slope)) ? limitToBounds(info, c, slope) : lowBound(info, c);
}

double CAudioParamConverterRatio::parseBound(const CAudioParamInfo&, int, const CString& text, bool* outOk) const
{
    double slope = 0.0;
    return answer(outOk, parseSlope(text, slope)) ? slope : kNeutralSlope;
}

void CAudioParamConverterRatio::formatValue(CString& out, const CAudioParamInfo&, int, double value,
                                            const CAudioParamData*, EValueStyle style) const
{
    const int decimals = style == EValueStyle::compact ? 1 : m_decimals;
    const double ratio = 1.0 / value;
    if (roundHalfAway(ratio * 1000.0) < 1001)
        out = CString("1:") + formatFixed(value, roundHalfAway(value * 10.0) >= 100 ? decimals - 1 : decimals);
    else
        out = formatFixed(ratio, roundHalfAway(ratio * 1000.0) >= 10000 ? decimals - 1 : decimals) + ":1";
}

double CAudioParamConverterRatio::fromNormal(const CAudioParamInfo& info, int c, double n) const
{
    const double low = std::atan(lowBound(info, c));
    return std::tan(low + (std::atan(highBound(info, c)) - low) * n);
}

double CAudioParamConverterRatio::toNormal(const CAudioParamInfo& info, int c, double value) const
{
    const double low = std::atan(lowBound(info, c));
    return share(std::atan(value) - low, std::atan(highBound(info, c)) - low);
}

double CAudioParamConverterRatio::toDisplay(const CAudioParamInfo& info, int c, double n) const
{
    return fromNormal(info, c, n);
}

} // namespace qrb
