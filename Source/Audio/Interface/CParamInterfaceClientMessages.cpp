// SPDX-License-Identifier: GPL-3.0-or-later
// What the base tells a client.
#include "Audio/CAudioParamUpdate.h"
#include "Audio/CAudioParamUpdateHolder.h"
#include "Audio/Interface/CParamInterfaceClient.h"
#include "Audio/Interface/CParamInterfaceParamListener.h"
#include "Audio/Interface/CParamInterfaceRegistryListener.h"
#include "Audio/Interface/ParamInterfaceFields.h"
#include "Audio/Presets/CAudioPresetBank.h"
#include "Core/CInputStream.h"

#include <utility>

namespace qrb {

CErrorPtr CParamInterfaceClient::processMessage(CInputStream& in)
{
    CString event;
    QRB_TRY(in.readString(event));
    if (m_ownEvents.findEvent(event) != nullptr)
        return QRB_ERROR("@qrbstr_CParamInterfaceClient_processMessage_Event Unknown message '%1'.", event);
    CInputStream* const outer = std::exchange(m_message, &in);
    CErrorPtr error = runEvent(event);
    m_message = outer;
    QRB_TRY(std::move(error));
    return {};
}

CParamInterfaceParamListener* CParamInterfaceClient::findParam(std::int32_t id) const
{
    const auto found = m_params.find(id);
    return found != m_params.end() ? found->second : nullptr;
}

CParamInterfaceRegistryListener* CParamInterfaceClient::findRegistry(std::int32_t id) const
{
    const auto found = m_registries.find(id);
    return found != m_registries.end() ? found->second : nullptr;
}

CErrorPtr CParamInterfaceClient::readTexts(CArray<CString>& texts, std::int32_t count)
{
    if (count < 0 || count > kMaxTextCount)
        return QRB_ERROR("@qrbstr_CParamInterfaceClient_readTexts_Count Invalid count of texts %1.", count);
    for (std::int32_t i = 0; i < count; ++i)
        QRB_TRY(readFields(message(), texts.emplace()));
    return {};
}

CErrorPtr CParamInterfaceClient::onUpdateUndoHistory()
{
    std::int32_t position = 0;
    std::int32_t count = 0;
    CArray<CString> labels;
    QRB_TRY(readFields(message(), position, count));
    QRB_TRY(readTexts(labels, count));
    m_history = std::move(labels);
    m_historyPosition = position;
    return raiseEvent("undo-history-changed");
}

CErrorPtr CParamInterfaceClient::readValue(CParamInterfaceParamListener& listener)
{
    CAudioParamUpdateHolder holder;
    CAudioParamUpdate update;
    QRB_TRY(update.load(message(), holder));
    return listener.onParamValue(update);
}

CErrorPtr CParamInterfaceClient::onUpdateParamInfo()
{
    std::int32_t id = 0;
    bool hasInfo = false;
    QRB_TRY(readFields(message(), id, hasInfo));
    CParamInterfaceParamListener* listener = findParam(id);
    if (listener == nullptr)
        return {};
    if (hasInfo)
        QRB_TRY(listener->onParamInfo(message()));
    bool hasValue = false;
    QRB_TRY(readFields(message(), hasValue));
    listener = findParam(id); // it may have left just now
    return hasValue && listener != nullptr ? readValue(*listener) : CErrorPtr();
}

CErrorPtr CParamInterfaceClient::onUpdateParam()
{
    std::int32_t id = 0;
    QRB_TRY(readFields(message(), id));
    CParamInterfaceParamListener* const listener = findParam(id);
    return listener != nullptr ? readValue(*listener) : CErrorPtr();
}

CErrorPtr CParamInterfaceClient::onUpdateRegistry()
{
    std::int32_t id = 0;
    bool isFactory = false;
    CString registryId;
    std::int32_t current = 0;
    std::int32_t count = 0;
    CArray<CString> names;
    QRB_TRY(readFields(message(), id, isFactory, registryId, current, count));
    QRB_TRY(readTexts(names, count));
    CParamInterfaceRegistryListener* const listener = findRegistry(id);
    return listener != nullptr ? listener->onRegistryUpdate(isFactory, registryId, names.span(), current) : CErrorPtr();
}

CErrorPtr CParamInterfaceClient::onRegistryData()
{
    std::int32_t id = 0;
    std::int32_t tag = 0;
    bool isPreset = false;
    QRB_TRY(readFields(message(), id, tag, isPreset));
    CParamInterfaceRegistryListener* const listener = findRegistry(id);
    if (listener == nullptr)
        return {};
    if (isPreset) {
        CAudioPreset preset;
        QRB_TRY(preset.load(message()));
        return listener->onPresetData(tag, preset);
    }
    CAudioPresetBank bank;
    QRB_TRY(bank.load(message()));
    return listener->onBankData(tag, bank);
}

} // namespace qrb
