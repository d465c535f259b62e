// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Converters/CAudioParamConverterEnum.h"

#include <span>

#include "Audio/CAudioParamInfo.h"
#include "Audio/Converters/ConverterMath.h"
#include "Audio/StateNames.h"
#include "Core/CNumberText.h"

namespace qrb {

namespace {

/// Decimal digits with an optional sign, nothing else.
bool parseSigned(const CString& text, double& value)
{
    const bool hasSign = !text.empty() && (text.at(0) == u'+' || text.at(0) == u'-');
    const CString digits = text.substr(hasSign ? 1 : 0);
    for (std::size_t i = 0; i < digits.length(); ++i)
        if (digits.at(i) < u'0' || digits.at(i) > u'9')
            return false;
    std::int32_t number = 0;
    if (!parseInteger(digits, number))
        return false;
    value = text.at(0) == u'-' ? -number : number;
    return true;
}

bool findName(std::span<const CString> names, const CString& text, std::size_t& position)
{
    for (position = 0; position < names.size(); ++position)
        if (names[position].compareNoCase(text) == 0)
            return true;
    return false;
}

} // namespace

CErrorPtr CAudioParamConverterEnum::init()
{
    QRB_TRY(CAudioParamConverterRound::init());
    m_longNames.clear();
    m_shortNames.clear();
    return loadStateNames(m_longNames, m_shortNames);
}

CErrorPtr CAudioParamConverterEnum::loadStateNames(CArray<CString>& longNames, CArray<CString>& shortNames)
{
    parseStateNames(getAttrString("state-names"), longNames, shortNames);
    return nullptr;
}

bool CAudioParamConverterEnum::parseIndex(const CAudioParamInfo& info, const CString& text, double base,
                                          double& value) const
{
    const CString name = text.trimmed();
    if (parseSigned(name, value))
        return true;
    const CString shortName = name.substr(0, kShortNameLength);
    std::size_t position = 0;
    if (!findName(m_longNames.span(), name, position) && !findName(info.longStateNames.span(), name, position) &&
        !findName(m_shortNames.span(), shortName, position) &&
        !findName(info.shortStateNames.span(), shortName, position))
        return false;
    value = base + static_cast<double>(position);
    return true;
}

double CAudioParamConverterEnum::parseValue(const CAudioParamInfo& info, int c, const CString& text, bool* outOk) const
{
    const double base = static_cast<double>(roundHalfAway(lowBound(info, c)));
    double value = base;
    return answer(outOk, parseIndex(info, text, base, value)) ? limitToBounds(info, c, value) : base;
}

double CAudioParamConverterEnum::parseBound(const CAudioParamInfo& info, int, const CString& text, bool* outOk) const
{
    double value = 0.0;
    answer(outOk, parseIndex(info, text, 0.0, value));
    return value;
}

void CAudioParamConverterEnum::formatValue(CString& out, const CAudioParamInfo& info, int c, double value,
                                           const CAudioParamData*, EValueStyle style) const
{
    const std::span<const CString> infoNames = info.longStateNames.span();
    if (m_longNames.empty() && infoNames.empty()) {
        out = formatInteger(roundHalfAway(value));
        return;
    }
    const std::int64_t index = std::int64_t{roundToInt(value)} - roundToInt(lowBound(info, c));
    const bool isOwn = index >= 0 && index < static_cast<std::int64_t>(m_longNames.size());
    if (index < 0 || (!isOwn && index >= static_cast<std::int64_t>(infoNames.size()))) {
        out = style == EValueStyle::compact ? "Rsv" : "Reserve";
        return;
    }
    const auto i = static_cast<std::size_t>(index);
    const CString& longName = isOwn ? m_longNames[i] : infoNames[i];
    const CString& shortName = isOwn ? m_shortNames[i] : info.shortStateNames[i];
    if (style == EValueStyle::compact)
        out = shortName.substr(0, 3);
    else
        out = style == EValueStyle::shortName ? shortName : longName;
}

} // namespace qrb
