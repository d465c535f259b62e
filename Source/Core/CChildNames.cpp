// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CChildNames.h"

#include <iterator>

namespace qrb {

namespace {

constexpr std::size_t kMaxIndexDigits = 9;

/// Decimal digits from `from` to the end of the text.
bool readIndex(const CString& text, std::size_t from, std::uint32_t& index)
{
    const std::size_t digits = text.length() - from;
    if (digits == 0 || digits > kMaxIndexDigits)
        return false;
    std::uint32_t value = 0;
    for (std::size_t i = from; i < text.length(); ++i) {
        const char16_t unit = text.at(i);
        if (unit < u'0' || unit > u'9')
            return false;
        value = value * 10 + static_cast<std::uint32_t>(unit - u'0');
    }
    index = value;
    return true;
}

} // namespace

CChildNames::CName CChildNames::split(const CString& name)
{
    const std::size_t hash = name.find(u'#');
    std::uint32_t index = 0;
    if (hash == CString::npos || !readIndex(name, hash + 1, index))
        return {name, 0};
    return {name.substr(0, hash), index};
}

CChildNames::CName CChildNames::add(const CString& name, CObject& child)
{
    CName got = split(name);
    Indexed& indexed = m_names[got.base];
    if (indexed.contains(got.index))
        got.index = indexed.rbegin()->first + 1;
    indexed.emplace(got.index, &child);
    return got;
}

void CChildNames::remove(const CString& name, const CObject& child)
{
    const CName split = CChildNames::split(name);
    const auto found = m_names.find(split.base);
    if (found == m_names.end())
        return;
    const auto entry = found->second.find(split.index);
    if (entry == found->second.end() || entry->second != &child)
        return;
    found->second.erase(entry);
    if (found->second.empty())
        m_names.erase(found);
}

CObject* CChildNames::find(const CString& segment) const
{
    const std::size_t hash = segment.find(u'#');
    if (hash == CString::npos) {
        const auto found = m_names.find(segment);
        return found != m_names.end() ? found->second.begin()->second : nullptr;
    }
    const char16_t sign = segment.at(hash + 1);
    const bool isCounted = sign == u'+' || sign == u'-';
    std::uint32_t index = 0;
    if (!readIndex(segment, hash + (isCounted ? 2 : 1), index)) {
        const auto found = m_names.find(segment);
        return found != m_names.end() ? found->second.begin()->second : nullptr;
    }
    const auto found = m_names.find(segment.substr(0, hash));
    if (found == m_names.end())
        return nullptr;
    const Indexed& indexed = found->second;
    if (!isCounted) {
        const auto entry = indexed.find(index);
        return entry != indexed.end() ? entry->second : nullptr;
    }
    if (index >= indexed.size())
        return nullptr;
    return sign == u'+' ? std::next(indexed.begin(), index)->second : std::next(indexed.rbegin(), index)->second;
}

} // namespace qrb
