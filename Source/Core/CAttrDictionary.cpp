// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CAttrDictionary.h"

namespace qrb {

void CAttrDictionary::set(const CString& name, const CObjectAttr& value)
{
    m_values.insert_or_assign(name, value);
}

void CAttrDictionary::remove(const CString& name)
{
    m_values.erase(name);
}

const CObjectAttr* CAttrDictionary::find(const CString& name) const
{
    const auto found = m_values.find(name);
    return found != m_values.end() ? &found->second : nullptr;
}

CString CAttrDictionary::getString(const CString& name, const CString& def) const
{
    const CObjectAttr* const value = find(name);
    return value != nullptr ? value->toString(def) : def;
}

bool CAttrDictionary::getBool(const CString& name, bool def) const
{
    const CObjectAttr* const value = find(name);
    return value != nullptr ? value->toBool(def) : def;
}

std::int32_t CAttrDictionary::getInt(const CString& name, std::int32_t def) const
{
    const CObjectAttr* const value = find(name);
    return value != nullptr ? value->toInt(def) : def;
}

double CAttrDictionary::getDouble(const CString& name, double def) const
{
    const CObjectAttr* const value = find(name);
    return value != nullptr ? value->toDouble(def) : def;
}

} // namespace qrb
