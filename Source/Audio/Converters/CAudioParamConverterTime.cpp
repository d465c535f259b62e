// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Converters/CAudioParamConverterTime.h"

#include <cmath>

#include "Audio/Converters/ConverterMath.h"
#include "Core/CNumberText.h"

namespace qrb {

CErrorPtr CAudioParamConverterTime::init()
{
    QRB_TRY(CAudioParamConverter::init());
    m_isLog = getAttrBool("is-log");
    m_isExact = getAttrBool("is-exact");
    m_isPrecise = getAttrBool("is-precise");
    m_scale = getAttrDouble("scale");
    if (!(m_scale > 0.0))
        return QRB_ERROR("@qrbstr_CAudioParamConverterTime_init_InvalidScale Invalid scale %1 specified.",
                         getAttrString("scale"));
    return nullptr;
}

double CAudioParamConverterTime::parseValue(const CAudioParamInfo& info, int c, const CString& text, bool* outOk) const
{
    return parseScaledLimited(info, c, text, m_scale, outOk);
}

double CAudioParamConverterTime::parseBound(const CAudioParamInfo&, int, const CString& text, bool* outOk) const
{
    return parseScaled(text, m_scale, 0.0, outOk);
}

void CAudioParamConverterTime::formatValue(CString& out, const CAudioParamInfo&, int, double value,
                                           const CAudioParamData*, EValueStyle style) const
{
    const double shown = value / m_scale;
    const std::int64_t size = roundHalfAway(std::abs(shown));
    if (style == EValueStyle::compact) {
        if (size < 100)
            out = formatFixed(shown, size < 10 ? 1 : 0);
        else
            out = formatFixed(shown * 0.001, 1) + "*"; // a reading in thousands
        return;
    }
    int decimals = m_isPrecise ? 1 : 0;
    if (m_isExact || size < 10)
        decimals += 2;
    else if (size < 100)
        decimals += 1;
    out = formatFixed(shown, decimals);
}

double CAudioParamConverterTime::fromNormal(const CAudioParamInfo& info, int c, double n) const
{
    if (m_isLog) {
        const double low = lowBound(info, c);
        return std::exp(std::log(low) + std::log(highBound(info, c) / low) * n);
    }
    return m_isExact ? linearFromNormal(info, c, n) : squareFromNormal(info, c, n);
}

double CAudioParamConverterTime::toNormal(const CAudioParamInfo& info, int c, double value) const
{
    if (m_isLog) {
        const double low = lowBound(info, c);
        return share(std::log(value / low), std::log(highBound(info, c) / low));
    }
    return m_isExact ? linearToNormal(info, c, value) : squareToNormal(info, c, value);
}

double CAudioParamConverterTime::toDisplay(const CAudioParamInfo& info, int c, double n) const
{
    return fromNormal(info, c, n) / m_scale;
}

} // namespace qrb
