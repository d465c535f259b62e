// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamRename.h"

namespace qrb {

CAudioParamRename::CAudioParamRename(const CString& original, const CString& renamed) : CAudioParamPathEntry(original)
{
    setTarget(renamed);
}

void CAudioParamRename::setTarget(const CString& renamed)
{
    const CAudioParamPathEntry* target = m_targets.find(renamed);
    if (target == nullptr)
        target = &m_targets.add(std::make_unique<CAudioParamPathEntry>(renamed));
    m_target.store(target, std::memory_order_release);
}

} // namespace qrb
