// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Interface/CParamInterfaceClient.h"

#include "Audio/CAudioParamUpdate.h"
#include "Audio/Interface/CParamInterfaceClientConnector.h"
#include "Audio/Interface/CParamInterfaceMessage.h"
#include "Audio/Interface/CParamInterfaceParamListener.h"
#include "Audio/Interface/CParamInterfaceRegistryListener.h"
#include "Audio/Presets/CAudioPreset.h"

#include <utility>

namespace qrb {

void CParamInterfaceClient::declare(CObjectClassInfo& info)
{
    CObject::declare(info);
    info.event<&CParamInterfaceClient::onUpdateUndoHistory>("update-undo-history");
    info.event<&CParamInterfaceClient::onUpdateParamInfo>("update-param-info");
    info.event<&CParamInterfaceClient::onUpdateParam>("update-param");
    info.event<&CParamInterfaceClient::onUpdateRegistry>("update-registry");
    info.event<&CParamInterfaceClient::onRegistryData>("registry-data");
}

CParamInterfaceClient::CParamInterfaceClient()
{
    CObject::declare(m_ownEvents);
}

CParamInterfaceClient::~CParamInterfaceClient() = default;

CErrorPtr CParamInterfaceClient::initChilds()
{
    QRB_TRY(CObject::initChilds());
    QRB_TRY(findObjectByAttr("client-connector", m_connector));
    m_connector->setClient(this);
    m_clientId = m_connector->clientId();
    requestUndoHistory();
    return {};
}

void CParamInterfaceClient::unlink()
{
    if (m_connector != nullptr) {
        // The engine may have gone before; then there is nothing to leave.
        for (const auto& each : m_params)
            static_cast<void>(ask(CParamInterfaceMessage("unlisten-param").add(each.first)));
        for (const auto& each : m_registries)
            static_cast<void>(ask(CParamInterfaceMessage("unlisten-registry").add(each.first)));
        m_connector->setClient(nullptr);
    }
    m_connector = nullptr;
    m_params.clear();
    m_registries.clear();
    CObject::unlink();
}

CErrorPtr CParamInterfaceClient::ask(const CParamInterfaceMessage& message)
{
    if (m_connector == nullptr)
        return QRB_ERROR("@qrbstr_CParamInterfaceClient_ask_NoConnector No client connector defined.");
    QRB_TRY(m_connector->send(message.bytes()));
    m_lastFailure.clear();
    return {};
}

void CParamInterfaceClient::tell(const CParamInterfaceMessage& message)
{
    CErrorPtr error = ask(message);
    if (!error || error->line(0) == m_lastFailure)
        return;
    m_lastFailure = error->line(0);
    reportError(std::move(error));
}

std::int32_t CParamInterfaceClient::listenParam(const CString& path, CParamInterfaceParamListener& listener)
{
    const std::int32_t id = m_paramIds.take(m_clientId);
    if (id == 0)
        return 0;
    m_params[id] = &listener;
    tell(CParamInterfaceMessage("listen-param").add(path).add(id));
    return id;
}

void CParamInterfaceClient::unlistenParam(std::int32_t id)
{
    if (m_params.erase(id) == 0)
        return;
    tell(CParamInterfaceMessage("unlisten-param").add(id));
    m_paramIds.give(id);
}

void CParamInterfaceClient::changeParam(std::int32_t id, const CAudioParamUpdate& update, std::int32_t undoId)
{
    CParamInterfaceMessage message("change-param");
    message.add(id).add(undoId);
    static_cast<void>(update.save(message.out()));
    tell(message);
}

void CParamInterfaceClient::resetParam(std::int32_t id, std::int32_t group, std::int32_t element, std::int32_t undoId,
                                       bool isFromTemplate)
{
    tell(CParamInterfaceMessage("reset-param").add(id).add(group).add(element).add(undoId).add(isFromTemplate));
}

std::int32_t CParamInterfaceClient::createUndoData(const CString& label, bool isMerging, std::int32_t mergeTag)
{
    const std::int32_t id = m_undoIds.take(m_clientId);
    if (id != 0)
        tell(CParamInterfaceMessage("create-undo-data").add(id).add(label).add(isMerging).add(mergeTag));
    return id;
}

void CParamInterfaceClient::removeUndoData(std::int32_t undoId)
{
    tell(CParamInterfaceMessage("remove-undo-data").add(undoId));
    m_undoIds.give(undoId);
}

void CParamInterfaceClient::submitUndoData(std::int32_t undoId, const CString& label)
{
    tell(CParamInterfaceMessage("submit-undo-data").add(undoId).add(label));
    m_undoIds.give(undoId);
}

void CParamInterfaceClient::setUndoHistoryPos(std::int32_t position)
{
    tell(CParamInterfaceMessage("set-undo-history-pos").add(position));
}

void CParamInterfaceClient::requestUndoHistory()
{
    tell(CParamInterfaceMessage("request-undo-history").add(m_clientId));
}

void CParamInterfaceClient::getUndoHistory(CArray<CString>& outLabels, std::int32_t& outPosition) const
{
    outLabels = m_history;
    outPosition = m_historyPosition;
}

std::int32_t CParamInterfaceClient::listenRegistry(const CString& path, CParamInterfaceRegistryListener& listener)
{
    const std::int32_t id = m_registryIds.take(m_clientId);
    if (id == 0)
        return 0;
    m_registries[id] = &listener;
    tell(CParamInterfaceMessage("listen-registry").add(path).add(id));
    if (CErrorPtr error = listener.onConnected())
        reportError(std::move(error));
    return id;
}

void CParamInterfaceClient::unlistenRegistry(std::int32_t id)
{
    if (m_registries.erase(id) == 0)
        return;
    tell(CParamInterfaceMessage("unlisten-registry").add(id));
    m_registryIds.give(id);
}

void CParamInterfaceClient::setCurrentProgram(std::int32_t id, std::int32_t index)
{
    tell(CParamInterfaceMessage("set-current-program").add(id).add(index));
}

void CParamInterfaceClient::renamePreset(std::int32_t id, std::int32_t index, const CString& name)
{
    tell(CParamInterfaceMessage("rename-preset").add(id).add(index).add(name));
}

void CParamInterfaceClient::activateFactoryPreset(std::int32_t id, std::int32_t index)
{
    tell(CParamInterfaceMessage("activate-factory-preset").add(id).add(index));
}

CErrorPtr CParamInterfaceClient::activatePreset(std::int32_t id, const CAudioPreset& preset, std::int32_t group)
{
    CParamInterfaceMessage message("activate-preset");
    message.add(id).add(group);
    QRB_TRY(preset.save(message.out()));
    return ask(message);
}

void CParamInterfaceClient::requestPreset(std::int32_t id, std::int32_t tag, bool isFactory, std::int32_t index,
                                          std::int32_t group)
{
    tell(CParamInterfaceMessage("request-preset").add(id).add(tag).add(isFactory).add(index).add(group));
}

void CParamInterfaceClient::requestBank(std::int32_t id, std::int32_t tag, bool isFactory)
{
    tell(CParamInterfaceMessage("request-bank").add(id).add(tag).add(isFactory));
}

CErrorPtr CParamInterfaceClient::setDefaultPreset(std::int32_t id, const CAudioPreset& preset)
{
    CParamInterfaceMessage message("set-default-preset");
    message.add(id);
    QRB_TRY(preset.save(message.out()));
    return ask(message);
}

void CParamInterfaceClient::activateDefaultPreset(std::int32_t id)
{
    tell(CParamInterfaceMessage("activate-default-preset").add(id));
}

void CParamInterfaceClient::exchangeShadowPreset(std::int32_t id)
{
    tell(CParamInterfaceMessage("exchange-shadow-preset").add(id));
}

void CParamInterfaceClient::updateShadowPreset(std::int32_t id)
{
    tell(CParamInterfaceMessage("update-shadow-preset").add(id));
}

} // namespace qrb
