// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamReader.h"

#include "Audio/CAudioParamUpdate.h"

namespace qrb {

bool CAudioParamReader::isHit(const CAudioParamUpdate& update) const
{
    if (update.isTemplate())
        return true;
    const bool isAllGroups = update.format.isSingleGroup && update.group == 0;
    if (m_group != update.group && m_group != -1 && !isAllGroups)
        return false;
    if (m_element == -1 || (update.format.isSingleElement && update.firstElement == 0))
        return true;
    return m_element >= update.firstElement && (update.isToEnd || m_element < update.endElement());
}

void CAudioParamReader::tell(const CAudioParamUpdate& update)
{
    if (!isHit(update))
        return;
    *m_dirtyFlag = 1;
    *m_mask |= update.isTemplate() ? ~std::uint32_t{0} : audioParamGroupBit(update.group);
}

} // namespace qrb
