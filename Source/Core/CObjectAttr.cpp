// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CObjectAttr.h"

#include "Core/CNumberText.h"
#include "Core/CTextRecord.h"

namespace qrb {

CObjectAttr CObjectAttr::none()
{
    CObjectAttr attr;
    attr.m_type = EType::none;
    return attr;
}

CObjectAttr CObjectAttr::pointer(void* address)
{
    CObjectAttr attr = none();
    attr.m_pointer = address;
    return attr;
}

CString CObjectAttr::toString(const CString& def) const
{
    return m_type == EType::empty ? def : cachedText();
}

bool CObjectAttr::toBool(bool def) const
{
    switch (m_type) {
    case EType::boolean:
    case EType::integer:
        return m_number != 0.0;
    case EType::string: {
        const CString& text = m_text.text();
        if (text == "1" || text == "true")
            return true;
        return text == "0" || text == "false" ? false : def;
    }
    case EType::empty:
        return false;
    case EType::number:
    case EType::none:
        break;
    }
    return def;
}

std::int32_t CObjectAttr::toInt(std::int32_t def) const
{
    switch (m_type) {
    case EType::boolean:
    case EType::integer:
    case EType::number:
        return roundToInt(m_number);
    case EType::string: {
        std::int32_t value = 0;
        return parseInteger(m_text.text(), value) ? value : def;
    }
    case EType::empty:
        return 0;
    case EType::none:
        break;
    }
    return def;
}

double CObjectAttr::toDouble(double def) const
{
    switch (m_type) {
    case EType::integer:
    case EType::number:
        return m_number;
    case EType::string: {
        double value = 0.0;
        return findNumber(value) ? value : def;
    }
    case EType::empty:
        return 0.0;
    case EType::boolean:
    case EType::none:
        break;
    }
    return def;
}

void CObjectAttr::freeze()
{
    static_cast<void>(cachedText());
    double unused = 0.0;
    if (m_type == EType::string)
        static_cast<void>(findNumber(unused));
}

bool CObjectAttr::findNumber(double& out) const
{
    if (!m_hasNumber && !m_isNotNumber) {
        m_hasNumber = parseNumber(m_text.text(), m_number);
        m_isNotNumber = !m_hasNumber;
    }
    out = m_number;
    return m_hasNumber;
}

const CString& CObjectAttr::cachedText() const
{
    if (!m_text) {
        switch (m_type) {
        case EType::boolean:
            m_text = CTextRef(CString(m_number != 0.0 ? "true" : "false"));
            break;
        case EType::number:
            m_text = CTextRef(formatFixed(m_number, 4));
            break;
        case EType::integer:
            m_text = CTextRef(formatInteger(roundHalfAway(m_number)));
            break;
        case EType::string:
        case EType::none:
        case EType::empty:
            break;
        }
    }
    return m_text.text();
}

} // namespace qrb
