// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CDCDAWFilterWorkspace.h"

namespace qrb {

const CDCDAWFilterKind* CDCDAWFilterWorkspace::kind(EFilterKind id)
{
    const int key = static_cast<int>(id);
    if (const auto found = m_kinds.find(key); found != m_kinds.end())
        return &found->second;
    const CDCDAWFilterKind* known = filterKind(id);
    return known == nullptr ? nullptr : &m_kinds.emplace(key, *known).first->second;
}

} // namespace qrb
