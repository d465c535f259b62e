// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessBypassStateDef.h"

#include "Core/CNumberText.h"
#include "Core/CTextSplit.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qrb {

namespace {

/// Values of switches and enumerations are integers, give or take what a converter leaves.
bool isEqual(double value, double target)
{
    return std::abs(value - target) <= 0.1;
}

/// An end of a range: "*" leaves `out` open.
bool parseEnd(const CString& text, double step, std::int64_t& out)
{
    double value = 0.0;
    if (text == "*") {
        return true;
    }
    if (!parseNumber(text, value)) {
        return false;
    }
    out = roundHalfAway(value / step);
    return true;
}

} // namespace

bool CAudioProcessBypassStateDef::CRange::contains(double value) const
{
    const std::int64_t rounded = roundHalfAway(value / step);
    return rounded >= lowest && rounded <= highest;
}

bool CAudioProcessBypassStateDef::CRange::parse(const CString& text, CRange& out)
{
    const CString trimmed = text.trimmed();
    if (trimmed.length() < 2) {
        return false;
    }
    const char16_t open = trimmed.at(0);
    const char16_t close = trimmed.at(trimmed.length() - 1);
    if ((open != u'[' && open != u'(') || (close != u']' && close != u')')) {
        return false;
    }
    const CArray<CString> parts = split(trimmed.substr(1, trimmed.length() - 2), u';', EEmpty::keep);
    CRange range;
    if (parts.size() < 2 || parts.size() > 3) {
        return false;
    }
    if (parts.size() == 3 && (!parseNumber(parts[2].trimmed(), range.step) || !(range.step > 0.0))) {
        return false;
    }
    if (!parseEnd(parts[0].trimmed(), range.step, range.lowest) ||
        !parseEnd(parts[1].trimmed(), range.step, range.highest)) {
        return false;
    }
    if (open == u'(' && range.lowest != INT64_MIN && range.lowest != INT64_MAX) {
        ++range.lowest;
    }
    if (close == u')' && range.highest != INT64_MAX && range.highest != INT64_MIN) {
        --range.highest;
    }
    out = range;
    return true;
}

CErrorPtr CAudioProcessBypassStateDef::init()
{
    QRB_TRY(CObject::init());
    m_id = getAttrInt("id");
    m_param = getAttrString("param").trimmed();
    if (m_param.empty()) {
        return QRB_ERROR("@qrbstr_CAudioProcessBypassStateDef_init_InvalidParam Invalid parameter name specified.");
    }
    m_value = getAttrDouble("value");
    m_andParam = getAttrString("and-param").trimmed();
    m_andValue = getAttrDouble("and-value");
    m_isInverted = getAttrBool("is-inverted");

    const auto read = [this](const char* attr, std::optional<CRange>& out) {
        const CString text = getAttrString(attr);
        return text.empty() || CRange::parse(text, (out = CRange{}).value());
    };
    if (!read("range", m_range)) {
        return QRB_ERROR("@qrbstr_CAudioProcessBypassStateDef_init_InvalidRange Invalid 'range' attribute value '%1' "
                         "specified.",
                         getAttrString("range"));
    }
    if (!read("and-range", m_andRange)) {
        return QRB_ERROR("@qrbstr_CAudioProcessBypassStateDef_init_InvalidAndRange Invalid 'and-range' attribute value "
                         "'%1' specified.",
                         getAttrString("and-range"));
    }
    return nullptr;
}

bool CAudioProcessBypassStateDef::holds(double value, double andValue) const
{
    bool isMet = false;
    if (m_andParam.empty()) {
        isMet = m_range ? m_range->contains(value) : isEqual(value, m_value);
    } else if (m_range && m_andRange) {
        isMet = m_range->contains(value) && m_andRange->contains(andValue);
    } else {
        isMet = isEqual(value, m_value) && isEqual(andValue, m_andValue);
    }
    return isMet != m_isInverted;
}

} // namespace qrb
