// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CChildNames.h"

#include "Core/CNumberText.h"

#include <algorithm>

namespace qrb {

namespace {

constexpr std::size_t kMaxIndexDigits = 9;
constexpr std::uint32_t kMaxIndex = 999'999'999;

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

/// Position of the "#" of a name "base#index", or npos for a name that is all base.
std::size_t splitName(const CString& name, std::uint32_t& index)
{
    const std::size_t hash = name.find(u'#');
    index = 0;
    return hash != CString::npos && readIndex(name, hash + 1, index) ? hash : CString::npos;
}

} // namespace

CString CChildNames::add(const CString& name, CObject& child)
{
    std::uint32_t index = 0;
    const std::size_t hash = splitName(name, index);
    CString base = hash == CString::npos ? name : name.substr(0, hash);
    Indexed& indexed = m_names[base];
    auto place = std::partition_point(indexed.begin(), indexed.end(),
                                      [index](const CIndexed& each) { return each.index < index; });
    if (place != indexed.end() && place->index == index) {
        if (indexed.back().index < kMaxIndex) {
            index = indexed.back().index + 1;
            place = indexed.end();
        } else { // a higher one could not be read back from the name
            index = 0;
            for (place = indexed.begin(); place->index == index; ++place)
                ++index;
        }
    }
    indexed.insertAt(static_cast<std::size_t>(place - indexed.begin()), {index, &child});
    if (index != 0) {
        base.append(u'#');
        base += formatInteger(index);
    }
    return base;
}

void CChildNames::remove(const CString& name, const CObject& child)
{
    std::uint32_t index = 0;
    const std::size_t hash = splitName(name, index);
    const auto found = m_names.find(hash == CString::npos ? name : name.substr(0, hash));
    if (found == m_names.end())
        return;
    Indexed& indexed = found->second;
    for (std::size_t i = 0; i < indexed.size(); ++i) {
        if (indexed[i].child == &child) {
            indexed.removeAt(i);
            break;
        }
    }
    if (indexed.empty())
        m_names.erase(found);
}

CObject* CChildNames::find(const CString& segment) const
{
    const std::size_t hash = segment.find(u'#');
    const char16_t sign = hash == CString::npos ? u'\0' : segment.at(hash + 1);
    const bool isCounted = sign == u'+' || sign == u'-';
    std::uint32_t index = 0;
    if (hash == CString::npos || !readIndex(segment, hash + (isCounted ? 2 : 1), index)) {
        const auto found = m_names.find(segment);
        return found != m_names.end() ? found->second[0].child : nullptr;
    }
    const auto found = m_names.find(segment.substr(0, hash));
    if (found == m_names.end())
        return nullptr;
    const Indexed& indexed = found->second;
    if (isCounted) {
        if (index >= indexed.size())
            return nullptr;
        return indexed[sign == u'+' ? index : indexed.size() - 1 - index].child;
    }
    for (const CIndexed& each : indexed) {
        if (each.index == index)
            return each.child;
    }
    return nullptr;
}

} // namespace qrb
