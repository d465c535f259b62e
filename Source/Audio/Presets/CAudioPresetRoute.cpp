// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Presets/CAudioPresetRoute.h"

#include "Audio/CAudioParamCollector.h"

namespace qrb {

CAudioPresetRoute::CAudioPresetRoute(CAudioParamCollector& collector, const CAudioParamRoute& callersRoute)
    : m_collector(collector), m_route(callersRoute)
{
    if (m_route.deferredList == nullptr && !m_route.isImmediate)
        m_route.deferredList = &m_list;
}

CAudioPresetRoute::~CAudioPresetRoute()
{
    if (!m_list.empty())
        m_collector.splice(m_list);
}

} // namespace qrb
