// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Interface/CParamListener.h"

#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamUpdateInfo.h"
#include "Audio/Interface/CParamInterfaceBaseConnector.h"
#include "Audio/Interface/CParamInterfaceIds.h"
#include "Audio/Interface/CParamInterfaceMessage.h"

#include <algorithm>

namespace qrb {

CParamListener::CParamListener(std::int32_t id, CAudioParam& param, CParamInterfaceBaseConnector& connector)
    : m_id(id), m_param(param), m_connector(connector)
{
}

CParamListener::~CParamListener()
{
    detach();
}

void CParamListener::start()
{
    // Held, so that no change comes between the state and the first change that is sent.
    const CAudioParamGuard guard(m_param.collector());
    attach(&m_param.collector(), CAudioParamCollector::listenerKey(m_param));
    sendState(guard);
}

void CParamListener::sendState(const CAudioParamGuard& guard)
{
    if (!m_param.isBound()) {
        sendInfo(nullptr);
        return;
    }
    const CAudioParamStorage& values = m_param.editStorage(guard);
    CAudioParamUpdate defaults;
    defaults.group = kAudioParamTemplateGroup;
    defaults.isToEnd = true;
    defaults.format = values.format();
    defaults.elementCount = static_cast<std::int32_t>(values.defaultCells().size()) /
                            static_cast<std::int32_t>(defaults.format.elementSize);
    defaults.values = values.defaultCells().data();
    defaults.data = &values.data();
    sendInfo(&defaults);
    // Groups that are gone by now are told as empty ones: a client that has lost messages may still have them.
    for (std::int32_t group = 0, end = std::max(m_toldGroups, values.groupCount()); group < end; ++group)
        sendValue(values.wholeGroup(group, group));
}

void CParamListener::onUpdate(const CUpdateInfo& info)
{
    const CAudioParamUpdate& update = static_cast<const CAudioParamUpdateInfo&>(info).update;
    if (update.isTemplate())
        sendInfo(&update);
    else
        sendValue(update);
}

void CParamListener::sendInfo(const CAudioParamUpdate* value)
{
    CParamInterfaceMessage message("update-param-info");
    const CAudioParamInfo* const info = m_param.info();
    message.add(m_id).add(info != nullptr);
    if (info != nullptr)
        static_cast<void>(info->save(message.out()));
    message.add(value != nullptr);
    if (value != nullptr)
        static_cast<void>(value->save(message.out()));
    m_connector.send(CParamInterfaceIds::clientOf(m_id), message.bytes());
}

void CParamListener::sendValue(const CAudioParamUpdate& update)
{
    m_toldGroups = std::max(m_toldGroups, update.group + 1);
    CParamInterfaceMessage message("update-param");
    message.add(m_id);
    static_cast<void>(update.save(message.out()));
    m_connector.send(CParamInterfaceIds::clientOf(m_id), message.bytes());
}

} // namespace qrb
