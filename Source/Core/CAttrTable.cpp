// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CAttrTable.h"

#include "Core/CTextRecord.h"

#include <utility>

namespace qrb {

std::size_t CAttrTable::search(std::uint32_t hash, const CString& name) const
{
    const std::uint32_t* const hashes = m_hashes.data();
    const std::size_t count = m_hashes.size();
    for (std::size_t index = 0; index < count; ++index) {
        if (hashes[index] == hash) [[unlikely]] {
            const CString& text = m_entries[index].name.text();
            if (&text == &name || text == name)
                return index;
        }
    }
    return npos;
}

void CAttrTable::reserveMore(std::size_t count)
{
    m_hashes.reserve(m_hashes.size() + count);
    m_entries.reserve(m_entries.size() + count);
}

} // namespace qrb
