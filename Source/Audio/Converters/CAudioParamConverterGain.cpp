// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Converters/CAudioParamConverterGain.h"

#include <cmath>

#include "Audio/Converters/ConverterMath.h"
#include "Core/CNumberText.h"

namespace qrb {

namespace {

constexpr double kDecibelsPerNeper = 8.685889638065037;

} // namespace

CErrorPtr CAudioParamConverterGain::init()
{
    QRB_TRY(CAudioParamConverterLog::init());
    m_decimals = getAttrInt("decimals");
    if (m_decimals < 0 || m_decimals > 10)
        return QRB_ERROR("@qrbstr_CAudioParamConverterGain_init_InvalidDecimals "
                         "Invalid 'decimals' attribute value %1 specified.",
                         m_decimals);
    return nullptr;
}

double CAudioParamConverterGain::parseValue(const CAudioParamInfo& info, int c, const CString& text, bool* outOk) const
{
    bool ok = false;
    const double gain = parseBound(info, c, text, &ok);
    return answer(outOk, ok) ? limitToBounds(info, c, gain) : lowBound(info, c);
}

double CAudioParamConverterGain::parseBound(const CAudioParamInfo&, int, const CString& text, bool* outOk) const
{
    return std::exp(parseScaled(text, 1.0, 0.0, outOk) / kDecibelsPerNeper);
}

void CAudioParamConverterGain::formatValue(CString& out, const CAudioParamInfo&, int, double value,
                                           const CAudioParamData*, EValueStyle style) const
{
    const double decibels = std::log(value) * kDecibelsPerNeper;
    if (style == EValueStyle::exact)
        out = formatFixed(decibels, 2);
    else if (style == EValueStyle::compact)
        out = formatFixed(decibels, compactDecimals(decibels));
    else
        out = formatFixed(decibels, m_decimals);
}

double CAudioParamConverterGain::toDisplay(const CAudioParamInfo& info, int c, double n) const
{
    return std::log(fromNormal(info, c, n)) * kDecibelsPerNeper;
}

} // namespace qrb
