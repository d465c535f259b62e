// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamCollector.h"
#include "Audio/Interface/CParamInterfaceBase.h"
#include "Audio/Interface/CParamInterfaceIds.h"
#include "Audio/Interface/CParamInterfaceMessage.h"
#include "Audio/Interface/CParamListener.h"
#include "Audio/Interface/CRegistryListener.h"
#include "Audio/Interface/ParamInterfaceFields.h"
#include "Audio/Presets/CAudioParamRegistry.h"

#include <utility>

namespace qrb {

namespace {

CErrorPtr checkGroup(std::int32_t group)
{
    if (group < -1 || group >= kAudioParamMaxGroups)
        return QRB_ERROR("@qrbstr_CParamInterfaceBase_checkGroup_Invalid Invalid group %1.", group);
    return {};
}

} // namespace

CErrorPtr CParamInterfaceBase::onListenRegistry()
{
    CString path;
    std::int32_t id = 0;
    QRB_TRY(readLastFields(message(), path, id));
    QRB_TRY(checkClient(CParamInterfaceIds::clientOf(id)));
    if (m_registryListeners.contains(id))
        return {};
    if (m_registryListeners.size() >= kMaxRegistryListeners)
        return QRB_ERROR("@qrbstr_CParamInterfaceBase_onListenRegistry_Count Too many registries are followed.");
    path = path.substr(0, kMaxFullNameLength);
    auto listener = std::make_unique<CRegistryListener>(id, path, paramCollector().findRegistry(path), *connector());
    listener->sendState();
    m_registryListeners.emplace(id, std::move(listener));
    return {};
}

CErrorPtr CParamInterfaceBase::onUnlistenRegistry()
{
    std::int32_t id = 0;
    QRB_TRY(readLastFields(message(), id));
    m_registryListeners.erase(id);
    return {};
}

CErrorPtr CParamInterfaceBase::findRegistry(std::int32_t listenerId, CAudioParamRegistry*& out)
{
    const auto found = m_registryListeners.find(listenerId);
    if (found == m_registryListeners.end())
        return QRB_ERROR("@qrbstr_CParamInterfaceBase_findRegistry_NotFound No param registry object '%1' found.",
                         listenerId);
    out = found->second->registry();
    if (out == nullptr)
        return QRB_ERROR("@qrbstr_CParamInterfaceBase_findRegistry_Null Param registry object '%1' is NULL.",
                         found->second->path());
    return {};
}

template <class... F>
CErrorPtr CParamInterfaceBase::readRegistry(CAudioParamRegistry*& out, F&... fields)
{
    std::int32_t id = 0;
    QRB_TRY(readLastFields(message(), id, fields...));
    return findRegistry(id, out);
}

CErrorPtr CParamInterfaceBase::onSetCurrentProgram()
{
    CAudioParamRegistry* registry = nullptr;
    std::int32_t index = 0;
    QRB_TRY(readRegistry(registry, index));
    return registry->setCurrentProgram(index, this);
}

CErrorPtr CParamInterfaceBase::onRenamePreset()
{
    CAudioParamRegistry* registry = nullptr;
    std::int32_t index = 0;
    CString name;
    QRB_TRY(readRegistry(registry, index, name));
    registry->renamePreset(index, name.substr(0, kMaxLabelLength), this);
    return {};
}

CErrorPtr CParamInterfaceBase::onActivateFactoryPreset()
{
    CAudioParamRegistry* registry = nullptr;
    std::int32_t index = 0;
    QRB_TRY(readRegistry(registry, index));
    return registry->activateFactoryPreset(index);
}

CErrorPtr CParamInterfaceBase::onActivatePreset()
{
    std::int32_t id = 0;
    std::int32_t group = 0;
    CAudioPreset preset;
    QRB_TRY(readFields(message(), id, group));
    QRB_TRY(preset.load(message()));
    QRB_TRY(checkMessageEnd(message()));
    QRB_TRY(checkGroup(group));
    CAudioParamRegistry* registry = nullptr;
    QRB_TRY(findRegistry(id, registry));
    return registry->activatePreset(preset, nullptr, group);
}

CErrorPtr CParamInterfaceBase::onRequestPreset()
{
    std::int32_t id = 0;
    std::int32_t tag = 0;
    bool isFactory = false;
    std::int32_t index = 0;
    std::int32_t group = 0;
    QRB_TRY(readLastFields(message(), id, tag, isFactory, index, group));
    QRB_TRY(checkGroup(group));
    CAudioParamRegistry* registry = nullptr;
    QRB_TRY(findRegistry(id, registry));
    CParamInterfaceMessage answer("registry-data");
    answer.add(id).add(tag).add(true);
    QRB_TRY(registry->acquirePreset(isFactory, index, group, answer.out()));
    send(CParamInterfaceIds::clientOf(id), answer);
    return {};
}

CErrorPtr CParamInterfaceBase::onRequestBank()
{
    std::int32_t id = 0;
    std::int32_t tag = 0;
    bool isFactory = false;
    QRB_TRY(readLastFields(message(), id, tag, isFactory));
    CAudioParamRegistry* registry = nullptr;
    QRB_TRY(findRegistry(id, registry));
    CParamInterfaceMessage answer("registry-data");
    answer.add(id).add(tag).add(false);
    QRB_TRY(registry->acquireBank(isFactory, answer.out()));
    send(CParamInterfaceIds::clientOf(id), answer);
    return {};
}

CErrorPtr CParamInterfaceBase::onSetDefaultPreset()
{
    std::int32_t id = 0;
    CAudioPreset preset;
    QRB_TRY(readFields(message(), id));
    QRB_TRY(preset.load(message()));
    QRB_TRY(checkMessageEnd(message()));
    CAudioParamRegistry* registry = nullptr;
    QRB_TRY(findRegistry(id, registry));
    return registry->setDefaultPreset(preset);
}

CErrorPtr CParamInterfaceBase::onActivateDefaultPreset()
{
    CAudioParamRegistry* registry = nullptr;
    QRB_TRY(readRegistry(registry));
    registry->masterReset();
    return {};
}

CErrorPtr CParamInterfaceBase::onExchangeShadowPreset()
{
    CAudioParamRegistry* registry = nullptr;
    QRB_TRY(readRegistry(registry));
    return registry->exchangeShadowPreset();
}

CErrorPtr CParamInterfaceBase::onUpdateShadowPreset()
{
    CAudioParamRegistry* registry = nullptr;
    QRB_TRY(readRegistry(registry));
    registry->updateShadowPreset();
    return {};
}

} // namespace qrb
