// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamRenameMap.h"

namespace qrb {

void CAudioParamRenameMap::add(const CString& original, const CString& renamed)
{
    if (original != renamed)
        m_map.insert_or_assign(original, renamed);
}

CString CAudioParamRenameMap::resolve(const CString& path) const
{
    CString resolved = path;
    for (int step = 0; step < kMaxSteps; ++step) {
        const auto found = m_map.find(resolved);
        if (found == m_map.end())
            break;
        resolved = found->second;
    }
    return resolved;
}

} // namespace qrb
