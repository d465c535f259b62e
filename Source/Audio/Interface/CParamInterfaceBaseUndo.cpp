// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamUpdate.h"
#include "Audio/Interface/CParamInterfaceBase.h"
#include "Audio/Interface/CParamInterfaceBaseConnector.h"
#include "Audio/Interface/CParamInterfaceIds.h"
#include "Audio/Interface/CParamInterfaceMessage.h"
#include "Audio/Interface/CParamListener.h"
#include "Audio/Interface/CRegistryListener.h"
#include "Audio/Interface/ParamInterfaceFields.h"

#include <algorithm>
#include <utility>

namespace qrb {

using platform::CScopedLock;

namespace {

constexpr std::int32_t kMaxPlaceGroups = 256;

} // namespace

CAudioParamUndoEntry* CParamInterfaceBase::undoOf(std::int32_t undoId)
{
    const auto found = m_undoRecords.find(undoId);
    return found != m_undoRecords.end() ? found->second->entry.get() : nullptr;
}

CErrorPtr CParamInterfaceBase::onCreateUndoData()
{
    std::int32_t id = 0;
    CString label;
    bool isMerging = false;
    std::int32_t mergeTag = 0;
    QRB_TRY(readLastFields(message(), id, label, isMerging, mergeTag));
    const std::uint32_t clientId = CParamInterfaceIds::clientOf(id);
    QRB_TRY(checkClient(clientId));
    if (m_undoRecords.contains(id))
        return {};
    const auto open = std::ranges::count_if(
        m_undoRecords, [clientId](const auto& each) { return CParamInterfaceIds::clientOf(each.first) == clientId; });
    if (static_cast<std::size_t>(open) >= kMaxUndoRecords)
        return QRB_ERROR("@qrbstr_CParamInterfaceBase_onCreateUndoData_Count Too many gestures are open.");
    auto record = std::make_unique<CParamInterfaceUndoRecord>();
    record->entry = std::make_unique<CAudioParamUndoEntry>(label.substr(0, kMaxLabelLength));
    record->entry->isMerging = isMerging;
    record->entry->mergeTag = mergeTag;
    m_undoRecords.emplace(id, std::move(record));
    return {};
}

CErrorPtr CParamInterfaceBase::onSubmitUndoData()
{
    std::int32_t id = 0;
    CString label;
    QRB_TRY(readLastFields(message(), id, label));
    closeUndo(id, label.substr(0, kMaxLabelLength), true);
    return {};
}

CErrorPtr CParamInterfaceBase::onRemoveUndoData()
{
    std::int32_t id = 0;
    QRB_TRY(readLastFields(message(), id));
    closeUndo(id, {}, false);
    return {};
}

void CParamInterfaceBase::closeUndo(std::int32_t undoId, const CString& label, bool isSubmitted)
{
    const auto found = m_undoRecords.find(undoId);
    if (found == m_undoRecords.end())
        return;
    const std::unique_ptr<CParamInterfaceUndoRecord> record = std::move(found->second);
    m_undoRecords.erase(found);
    if (!label.empty())
        record->entry->label = label;
    if (isSubmitted)
        submit(std::move(record->entry));
    for (const auto& [param, place] : record->places)
        endChange(*param, place % kMaxPlaceGroups, place / kMaxPlaceGroups);
}

void CParamInterfaceBase::beginPlaces(CAudioParam& param, const CAudioParamUpdate& update, std::int32_t undoId)
{
    const std::int32_t group = update.storageGroup();
    for (std::int32_t element = update.firstElement; element < update.endElement(); ++element) {
        // Looked up anew each time: the host that is told may end the gesture.
        const auto record = m_undoRecords.find(undoId);
        if (record == m_undoRecords.end() || record->second->places.size() >= kMaxGesturePlaces)
            return;
        if (record->second->places.emplace(&param, element * kMaxPlaceGroups + group).second)
            beginChange(param, group, element);
    }
}

void CParamInterfaceBase::beginChange(CAudioParam&, std::int32_t, std::int32_t) {}

void CParamInterfaceBase::endChange(CAudioParam&, std::int32_t, std::int32_t) {}

CErrorPtr CParamInterfaceBase::onRequestUndoHistory()
{
    std::uint32_t clientId = 0;
    QRB_TRY(readClient(clientId));
    sendHistory(clientId);
    return {};
}

CErrorPtr CParamInterfaceBase::onSetUndoHistoryPos()
{
    std::int32_t position = 0;
    QRB_TRY(readLastFields(message(), position));
    setPosition(position);
    return {};
}

void CParamInterfaceBase::onHistoryChanged()
{
    sendHistory(CParamInterfaceBaseConnector::kAllClients);
}

void CParamInterfaceBase::sendHistory(std::uint32_t clientId)
{
    // Held until it is sent, so that the last to be sent is the newest.
    const CScopedLock held(lock());
    CArray<CString> labels;
    std::int32_t position = 0;
    getHistory(labels, position);
    CParamInterfaceMessage message("update-undo-history");
    message.add(position).add(static_cast<std::int32_t>(labels.size()));
    for (const CString& label : labels)
        message.add(label);
    send(clientId, message);
}

} // namespace qrb
