// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamRenameMap.h"

#include "Audio/CAudioParamRename.h"

namespace qrb {

void CAudioParamRenameMap::add(const CString& original, const CString& renamed)
{
    if (original == renamed)
        return;
    CAudioParamPathEntry* entry = m_renames.find(original);
    if (entry == nullptr)
        entry = &m_renames.add(std::make_unique<CAudioParamRename>(original, renamed));
    static_cast<CAudioParamRename*>(entry)->setTarget(renamed);
}

void CAudioParamRenameMap::addTwins(const CString& prefix, const CString& twin)
{
    // What joins on the way stands in front of where the walk is.
    for (CAudioParamPathEntry* entry = m_renames.newest(); entry != nullptr;
         entry = CAudioParamPathTree::older(*entry)) {
        if (!entry->path().startsWith(prefix))
            continue;
        const CString path = twin + entry->path().substr(prefix.length());
        if (m_renames.find(path) == nullptr)
            add(path, entry->path());
    }
}

const CString& CAudioParamRenameMap::resolve(const CString& path) const
{
    const CString* resolved = &path;
    for (int step = 0; step < kMaxSteps; ++step) {
        const CAudioParamPathEntry* const found = m_renames.find(*resolved);
        if (found == nullptr)
            break;
        resolved = &static_cast<const CAudioParamRename*>(found)->target();
    }
    return *resolved;
}

} // namespace qrb
