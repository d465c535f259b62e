// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Converters/CAudioParamConverterReal.h"

#include "Audio/Converters/ConverterMath.h"
#include "Core/CNumberText.h"

namespace qrb {

CErrorPtr CAudioParamConverterReal::init()
{
    QRB_TRY(CAudioParamConverter::init());
    m_decimals = getAttrInt("decimals");
    if (m_decimals < 0 || m_decimals > 10)
        return QRB_ERROR("@qrbstr_CAudioParamConverterReal_init_InvalidDecimals Invalid decimals %1 specified.",
                         m_decimals);
    return nullptr;
}

double CAudioParamConverterReal::parseValue(const CAudioParamInfo& info, int c, const CString& text, bool* outOk) const
{
    return parseScaledLimited(info, c, text, 1.0, outOk);
}

double CAudioParamConverterReal::parseBound(const CAudioParamInfo&, int, const CString& text, bool* outOk) const
{
    return parseScaled(text, 1.0, 0.0, outOk);
}

void CAudioParamConverterReal::formatValue(CString& out, const CAudioParamInfo&, int, double value,
                                           const CAudioParamData*, EValueStyle style) const
{
    out = formatFixed(value, style == EValueStyle::compact ? compactDecimals(value) : m_decimals);
}

double CAudioParamConverterReal::fromNormal(const CAudioParamInfo& info, int c, double n) const
{
    return linearFromNormal(info, c, n);
}

double CAudioParamConverterReal::toNormal(const CAudioParamInfo& info, int c, double value) const
{
    return linearToNormal(info, c, value);
}

double CAudioParamConverterReal::toDisplay(const CAudioParamInfo& info, int c, double n) const
{
    return fromNormal(info, c, n);
}

} // namespace qrb
