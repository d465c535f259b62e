// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParam.h"
#include "Audio/ParamFilters/CAudioParamFilter.h"

namespace qrb {

void CAudioParam::runFilters(const CAudioParamUpdate& record, const CAudioParamGuard& guard,
                             const CAudioParamRoute& route)
{
    for (CAudioParamFilter* const filter : m_filters)
        filter->run({record, guard, route});
}

void CAudioParam::attachFilter(CAudioParamFilter& filter, const CAudioParamGuard& guard, const CAudioParamRoute& route)
{
    m_filters.append(&filter);
    if (!m_edit.hasData())
        return;
    filter.run({m_edit.wholeGroup(0, kAudioParamTemplateGroup), guard, route});
    for (std::int32_t group = 0; group < m_edit.groupCount(); ++group)
        filter.run({m_edit.wholeGroup(group, group), guard, route});
}

void CAudioParam::detachFilter(const CAudioParamFilter& filter, const CAudioParamGuard&)
{
    for (std::size_t i = m_filters.size(); i-- > 0;)
        if (m_filters[i] == &filter)
            m_filters.removeAt(i);
}

} // namespace qrb
