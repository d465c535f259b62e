// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Interface/CRegistryListener.h"

#include "Audio/Interface/CParamInterfaceBaseConnector.h"
#include "Audio/Interface/CParamInterfaceIds.h"
#include "Audio/Interface/CParamInterfaceMessage.h"
#include "Audio/Presets/CAudioParamRegistry.h"

namespace qrb {

CRegistryListener::CRegistryListener(std::int32_t id, const CString& path, CAudioParamRegistry* registry,
                                     CParamInterfaceBaseConnector& connector)
    : m_id(id), m_path(path), m_registry(registry), m_connector(connector)
{
    attach(registry);
}

CRegistryListener::~CRegistryListener()
{
    detach();
}

CAudioParamRegistry* CRegistryListener::registry()
{
    return isAttached() ? m_registry : nullptr;
}

void CRegistryListener::sendState()
{
    CAudioParamRegistry* const found = registry();
    if (found == nullptr)
        return;
    sendNames(false);
    if (found->isMaster())
        sendNames(true);
}

void CRegistryListener::onUpdate(const CUpdateInfo&)
{
    sendNames(false);
}

void CRegistryListener::sendNames(bool isFactory)
{
    const platform::CScopedLock lock(m_sendLock);
    CArray<CString> names;
    std::int32_t current = -1;
    m_registry->getPresetNames(isFactory, names, current);
    CParamInterfaceMessage message("update-registry");
    message.add(m_id).add(isFactory).add(m_registry->id()).add(current);
    message.add(static_cast<std::int32_t>(names.size()));
    for (const CString& name : names)
        message.add(name);
    m_connector.send(CParamInterfaceIds::clientOf(m_id), message.bytes());
}

} // namespace qrb
