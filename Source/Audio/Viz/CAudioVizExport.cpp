// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Viz/CAudioVizExport.h"

#include "Audio/CAudioParamCollector.h"
#include "Audio/Viz/CAudioVizSlotManager.h"
#include "Core/CNumberText.h"

namespace qrb {

CAudioVizExport::CAudioVizExport(CAudioParamCollector& params, const CPaths& paths, CAudioVizSlotManager& manager)
{
    const CString* const names[] = {&paths.slots, &paths.colors, &paths.instanceName, &paths.groupNames};
    for (std::size_t i = 0; i < kParamCount; ++i) {
        if (names[i]->empty())
            continue;
        m_params[i] = &params.getParam(*names[i]);
        m_listeners[i].manager = &manager;
        m_listeners[i].attach(&params, CAudioParamCollector::listenerKey(*m_params[i]));
    }
}

void CAudioVizExport::CListener::onUpdate(const CUpdateInfo&)
{
    manager->markChanged();
}

std::int32_t CAudioVizExport::numberAt(EParam param, std::int32_t element) const
{
    const CAudioParam* const found = m_params[param];
    return found == nullptr ? 0 : roundToInt(found->value(0, element));
}

CString CAudioVizExport::textAt(EParam param, std::int32_t element) const
{
    const CAudioParam* const found = m_params[param];
    return found == nullptr ? CString() : found->text(0, element);
}

std::int32_t CAudioVizExport::slotOf(std::int32_t group) const
{
    return numberAt(kSlots, group) - 1;
}

CString CAudioVizExport::nameOf(std::int32_t group) const
{
    return textAt(kInstanceName, 0) + " (" + textAt(kGroupNames, group) +
           ")|color=" + formatInteger(numberAt(kColors, group));
}

} // namespace qrb
