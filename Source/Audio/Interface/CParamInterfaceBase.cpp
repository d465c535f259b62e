// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Interface/CParamInterfaceBase.h"

#include "Audio/CAudioParamCells.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamUpdateHolder.h"
#include "Audio/Interface/CParamInterfaceBaseConnector.h"
#include "Audio/Interface/CParamInterfaceIds.h"
#include "Audio/Interface/CParamInterfaceMessage.h"
#include "Audio/Interface/CParamListener.h"
#include "Audio/Interface/CRegistryListener.h"
#include "Audio/Interface/ParamInterfaceFields.h"
#include "Core/CInputStream.h"

#include <utility>

namespace qrb {

using platform::CScopedLock;

namespace {

constexpr std::size_t kMaxEventLength = 64;

bool isPlace(std::int32_t group, std::int32_t element)
{
    return group >= -1 && (group < kAudioParamMaxGroups || group == kAudioParamTemplateGroup) && element >= -1 &&
           element < kAudioParamMaxElements;
}

/// Bytes of the items that the cells refer to, as often as they do.
std::size_t itemBytes(const CAudioParamData* data, std::span<const double> cells)
{
    std::size_t bytes = 0;
    for (std::size_t i = 0; data != nullptr && i < cells.size(); ++i) {
        const std::int32_t key = audioParamKey(cells[i]);
        bytes += data->text(key).length() * sizeof(char16_t) + data->raw(key).size();
    }
    return bytes;
}

} // namespace

void CParamInterfaceBase::declare(CObjectClassInfo& info)
{
    CAudioParamUndo::declare(info);
    info.event<&CParamInterfaceBase::onListenParam>("listen-param");
    info.event<&CParamInterfaceBase::onUnlistenParam>("unlisten-param");
    info.event<&CParamInterfaceBase::onChangeParam>("change-param");
    info.event<&CParamInterfaceBase::onResetParam>("reset-param");
    info.event<&CParamInterfaceBase::onCreateUndoData>("create-undo-data");
    info.event<&CParamInterfaceBase::onSubmitUndoData>("submit-undo-data");
    info.event<&CParamInterfaceBase::onRemoveUndoData>("remove-undo-data");
    info.event<&CParamInterfaceBase::onRequestUndoHistory>("request-undo-history");
    info.event<&CParamInterfaceBase::onSetUndoHistoryPos>("set-undo-history-pos");
    info.event<&CParamInterfaceBase::onListenRegistry>("listen-registry");
    info.event<&CParamInterfaceBase::onUnlistenRegistry>("unlisten-registry");
    info.event<&CParamInterfaceBase::onSetCurrentProgram>("set-current-program");
    info.event<&CParamInterfaceBase::onRenamePreset>("rename-preset");
    info.event<&CParamInterfaceBase::onActivateFactoryPreset>("activate-factory-preset");
    info.event<&CParamInterfaceBase::onActivatePreset>("activate-preset");
    info.event<&CParamInterfaceBase::onRequestPreset>("request-preset");
    info.event<&CParamInterfaceBase::onRequestBank>("request-bank");
    info.event<&CParamInterfaceBase::onSetDefaultPreset>("set-default-preset");
    info.event<&CParamInterfaceBase::onActivateDefaultPreset>("activate-default-preset");
    info.event<&CParamInterfaceBase::onExchangeShadowPreset>("exchange-shadow-preset");
    info.event<&CParamInterfaceBase::onUpdateShadowPreset>("update-shadow-preset");
}

CParamInterfaceBase::CParamInterfaceBase()
{
    CObject::declare(m_ownEvents);
}

CParamInterfaceBase::~CParamInterfaceBase() = default;

CErrorPtr CParamInterfaceBase::initChilds()
{
    QRB_TRY(CAudioParamUndo::initChilds());
    QRB_TRY(findObjectByAttr("base-connector", m_connector));
    m_connector->setBase(this);
    return {};
}

void CParamInterfaceBase::unlink()
{
    disconnect();
    m_connector = nullptr;
    CAudioParamUndo::unlink();
}

void CParamInterfaceBase::disconnect()
{
    if (m_connector == nullptr)
        return;
    m_connector->setBase(nullptr);
    const CScopedLock lock(m_messageLock);
    m_paramListeners.clear();
    m_registryListeners.clear();
    while (!m_undoRecords.empty())
        closeUndo(m_undoRecords.begin()->first, {}, true);
}

CErrorPtr CParamInterfaceBase::processMessage(CInputStream& in)
{
    const CScopedLock lock(m_messageLock);
    CString event;
    QRB_TRY(in.readString(event));
    if (event.length() > kMaxEventLength || m_ownEvents.findEvent(event) != nullptr)
        return QRB_ERROR("@qrbstr_CParamInterfaceBase_processMessage_Event Unknown message '%1'.",
                         event.substr(0, kMaxEventLength));
    // A host that is told a gesture may call its editor, which then sends a message within this one.
    CInputStream* const outer = std::exchange(m_message, &in);
    CErrorPtr error = runEvent(event);
    m_message = outer;
    QRB_TRY(std::move(error));
    return {};
}

void CParamInterfaceBase::removeClient(std::uint32_t clientId)
{
    const CScopedLock lock(m_messageLock);
    eraseClient(m_paramListeners, clientId);
    eraseClient(m_registryListeners, clientId);
    CArray<std::int32_t> open;
    for (const auto& [id, record] : m_undoRecords)
        if (CParamInterfaceIds::clientOf(id) == clientId)
            open.append(id);
    for (const std::int32_t id : open)
        closeUndo(id, {}, true);
}

void CParamInterfaceBase::tellAll(std::uint32_t clientId)
{
    const CScopedLock lock(m_messageLock);
    for (const auto& [id, listener] : m_paramListeners) {
        if (CParamInterfaceIds::clientOf(id) != clientId)
            continue;
        const CAudioParamGuard guard(paramCollector());
        listener->sendState(guard);
    }
    for (const auto& [id, listener] : m_registryListeners)
        if (CParamInterfaceIds::clientOf(id) == clientId)
            listener->sendState();
    sendHistory(clientId);
}

CErrorPtr CParamInterfaceBase::checkClient(std::uint32_t clientId) const
{
    if (!m_connector->hasClient(clientId))
        return QRB_ERROR("@qrbstr_CParamInterfaceBase_checkClient_Unknown Unknown client %1.",
                         static_cast<std::int32_t>(clientId));
    return {};
}

CErrorPtr CParamInterfaceBase::readClient(std::uint32_t& clientId)
{
    QRB_TRY(readLastFields(message(), clientId));
    return checkClient(clientId);
}

void CParamInterfaceBase::send(std::uint32_t clientId, const CParamInterfaceMessage& message)
{
    if (m_connector != nullptr)
        m_connector->send(clientId, message.bytes());
}

CErrorPtr CParamInterfaceBase::onListenParam()
{
    CString path;
    std::int32_t id = 0;
    QRB_TRY(readLastFields(message(), path, id));
    QRB_TRY(checkClient(CParamInterfaceIds::clientOf(id)));
    if (m_paramListeners.contains(id))
        return {};
    CAudioParam* param = paramCollector().findParam(path);
    if (param == nullptr) {
        // It stays for good, so that one who guesses names must not make too many.
        if (path.empty() || path.length() > kMaxFullNameLength || m_namedParams >= kMaxNamedParams)
            return QRB_ERROR("@qrbstr_CParamInterfaceBase_onListenParam_Path No parameter can be made of that name.");
        ++m_namedParams;
        param = &paramCollector().getParam(path);
    }
    auto listener = std::make_unique<CParamListener>(id, *param, *m_connector);
    listener->start();
    m_paramListeners.emplace(id, std::move(listener));
    return {};
}

CErrorPtr CParamInterfaceBase::onUnlistenParam()
{
    std::int32_t id = 0;
    QRB_TRY(readLastFields(message(), id));
    m_paramListeners.erase(id);
    return {};
}

CErrorPtr CParamInterfaceBase::onChangeParam()
{
    std::int32_t id = 0;
    std::int32_t undoId = 0;
    QRB_TRY(readFields(message(), id, undoId));
    CAudioParamUpdateHolder holder;
    CAudioParamUpdate update;
    QRB_TRY(update.load(message(), holder));
    QRB_TRY(checkMessageEnd(message()));
    update.source = this;
    const auto listener = m_paramListeners.find(id);
    if (listener == m_paramListeners.end())
        return {};
    CAudioParam& param = listener->second->param();
    const CAudioParamInfo* const info = param.info();
    if (info == nullptr || info->format != update.format)
        return {};
    if (update.format.hasItems())
        QRB_TRY(
            checkItemBytes(param, update.storageGroup(), update.firstElement, itemBytes(update.data, update.cells())));
    beginPlaces(param, update, undoId);
    const CAudioParamGuard guard(paramCollector());
    const CAudioParamRoute route{.undo = undoOf(undoId)};
    paramCollector().tellHandChange(param, update.storageGroup(), route);
    param.update(update, guard, route);
    return {};
}

CErrorPtr CParamInterfaceBase::checkItemBytes(const CAudioParam& param, std::int32_t group, std::int32_t element,
                                              std::size_t bytes) const
{
    // One item of a message may stand for thousands of elements, and so may a default that fills a gap.
    const CAudioParamGuard guard(paramCollector());
    const CAudioParamStorage& values = param.editStorage(guard);
    for (std::int32_t each = 0; each < values.groupCount(); ++each)
        bytes += itemBytes(&values.data(), values.cells(each));
    for (auto gap = static_cast<std::int32_t>(values.cells(group).size()); gap < element; ++gap)
        bytes += itemBytes(&values.data(), values.defaultElement(gap));
    if (bytes > kMaxItemBytes)
        return QRB_ERROR("@qrbstr_CParamInterfaceBase_checkItemBytes_Size The texts of '%1' become too long.",
                         param.path());
    return {};
}

CErrorPtr CParamInterfaceBase::onResetParam()
{
    std::int32_t id = 0;
    std::int32_t group = 0;
    std::int32_t element = 0;
    std::int32_t undoId = 0;
    bool isFromTemplate = false;
    QRB_TRY(readLastFields(message(), id, group, element, undoId, isFromTemplate));
    if (!isPlace(group, element))
        return QRB_ERROR("@qrbstr_CParamInterfaceBase_onResetParam_Place Invalid element %1 of group %2.", element,
                         group);
    const auto listener = m_paramListeners.find(id);
    if (listener == m_paramListeners.end())
        return {};
    CAudioParam& param = listener->second->param();
    const CAudioParamInfo* const info = param.info();
    if (info != nullptr && info->format.hasItems() && group >= 0 && element > 0)
        QRB_TRY(checkItemBytes(param, group == kAudioParamTemplateGroup ? 0 : group, element, 0));
    using EFrom = CAudioParam::EResetFrom;
    const CAudioParamGuard guard(paramCollector());
    param.resetValues(group, element, isFromTemplate ? EFrom::firstElement : EFrom::samePlace,
                      {.undo = undoOf(undoId)});
    return {};
}

} // namespace qrb
