// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Interface/CAudioInterfaceBase.h"

#include "Audio/Interface/CAudioInterfaceDataProvider.h"
#include "Audio/Interface/CParamInterfaceBaseConnector.h"
#include "Audio/Interface/CParamInterfaceIds.h"
#include "Audio/Interface/CParamInterfaceMessage.h"
#include "Audio/Interface/CParamListener.h"
#include "Audio/Interface/CRegistryListener.h"
#include "Audio/Interface/ParamInterfaceFields.h"
#include "Audio/Viz/CAudioVizCollector.h"

namespace qrb {

using platform::CScopedLock;

namespace {

constexpr std::uint32_t kAllClients = CParamInterfaceBaseConnector::kAllClients;

} // namespace

void CAudioInterfaceBase::declare(CObjectClassInfo& info)
{
    CParamInterfaceBase::declare(info);
    info.event<&CAudioInterfaceBase::onListenViz>("listen-viz");
    info.event<&CAudioInterfaceBase::onUnlistenViz>("unlisten-viz");
    info.event<&CAudioInterfaceBase::onRequestVizData>("request-viz-data");
    info.event<&CAudioInterfaceBase::onRequestExportSlotNames>("request-export-slot-names");
    info.event<&CAudioInterfaceBase::onRequestInternalChannelCount>("request-internal-channel-count");
    info.event<&CAudioInterfaceBase::onRequestGroupCount>("request-group-count");
    info.event<&CAudioInterfaceBase::onRequestIOChannelCounts>("request-io-channel-counts");
    info.event<&CAudioInterfaceBase::onRequestSampleRate>("request-sample-rate");
    info.event<&CAudioInterfaceBase::onImportChannelLabels>("import-channel-labels");
}

CAudioInterfaceBase::CAudioInterfaceBase() = default;
CAudioInterfaceBase::~CAudioInterfaceBase() = default;

CErrorPtr CAudioInterfaceBase::initChilds()
{
    if (!getAttrString("viz-collector").empty())
        QRB_TRY(findObjectByAttr("viz-collector", m_vizCollector));
    QRB_TRY(CParamInterfaceBase::initChilds());
    m_slotNamesListener.attach(m_vizCollector, CAudioVizCollector::kExportSlotNames);
    return {};
}

void CAudioInterfaceBase::unlink()
{
    m_slotNamesListener.detach();
    CParamInterfaceBase::unlink();
    if (m_vizCollector != nullptr)
        for (const auto& each : m_vizListeners)
            m_vizCollector->unlisten(static_cast<std::uint32_t>(each.first));
    m_vizListeners.clear();
    m_vizCollector = nullptr;
}

void CAudioInterfaceBase::removeClient(std::uint32_t clientId)
{
    const CScopedLock held(messageLock());
    for (const auto& each : m_vizListeners)
        if (CParamInterfaceIds::clientOf(each.first) == clientId)
            m_vizCollector->unlisten(static_cast<std::uint32_t>(each.first));
    eraseClient(m_vizListeners, clientId);
    CParamInterfaceBase::removeClient(clientId);
}

void CAudioInterfaceBase::tellAll(std::uint32_t clientId)
{
    const CScopedLock held(messageLock());
    CParamInterfaceBase::tellAll(clientId);
    sendInternalChannelCount(clientId);
    sendGroupCount(clientId);
    sendIOChannelCounts(clientId);
    sendSampleRate(clientId);
    sendSlotNames(clientId);
}

void CAudioInterfaceBase::setDataProvider(CAudioInterfaceDataProvider* provider)
{
    const CScopedLock held(messageLock());
    m_provider = provider;
}

void CAudioInterfaceBase::sendEvent(const char* event)
{
    send(kAllClients, CParamInterfaceMessage(event));
}

void CAudioInterfaceBase::startViz()
{
    sendEvent("start-viz");
}

void CAudioInterfaceBase::stopViz()
{
    sendEvent("stop-viz");
}

void CAudioInterfaceBase::clearClients()
{
    sendEvent("clear-client");
}

void CAudioInterfaceBase::tellSetup()
{
    sendInternalChannelCount(kAllClients);
    sendGroupCount(kAllClients);
    sendIOChannelCounts(kAllClients);
    sendSampleRate(kAllClients);
}

CErrorPtr CAudioInterfaceBase::onListenViz()
{
    CVizListenerRecord record;
    std::int32_t id = 0;
    QRB_TRY(readLastFields(message(), record.kind, record.name, id));
    QRB_TRY(checkClient(CParamInterfaceIds::clientOf(id)));
    if (m_vizCollector == nullptr || m_vizListeners.contains(id) ||
        m_vizListeners.size() >= CAudioVizCollector::kMaxListeners)
        return {};
    m_vizCollector->listen(record.kind, record.name, static_cast<std::uint32_t>(id));
    m_vizListeners.emplace(id, std::move(record));
    return {};
}

CErrorPtr CAudioInterfaceBase::onUnlistenViz()
{
    std::int32_t id = 0;
    QRB_TRY(readLastFields(message(), id));
    if (m_vizListeners.erase(id) != 0)
        m_vizCollector->unlisten(static_cast<std::uint32_t>(id));
    return {};
}

CErrorPtr CAudioInterfaceBase::onRequestVizData()
{
    std::uint32_t clientId = 0;
    double now = 0.0;
    QRB_TRY(readLastFields(message(), clientId, now));
    QRB_TRY(checkClient(clientId));
    if (m_vizCollector == nullptr)
        return {};
    CParamInterfaceMessage answer("viz-data");
    QRB_TRY(m_vizCollector->writeData(clientId, now, answer.out()));
    send(clientId, answer);
    return {};
}

CErrorPtr CAudioInterfaceBase::answerWith(void (CAudioInterfaceBase::*answer)(std::uint32_t clientId))
{
    std::uint32_t clientId = 0;
    QRB_TRY(readClient(clientId));
    (this->*answer)(clientId);
    return {};
}

CErrorPtr CAudioInterfaceBase::onRequestExportSlotNames()
{
    return answerWith(&CAudioInterfaceBase::sendSlotNames);
}

void CAudioInterfaceBase::CSlotNamesListener::onUpdate(const CUpdateInfo&)
{
    owner().sendSlotNames(kAllClients);
}

void CAudioInterfaceBase::sendSlotNames(std::uint32_t clientId)
{
    if (m_vizCollector == nullptr)
        return;
    CParamInterfaceMessage names("export-slot-names");
    static_cast<void>(m_vizCollector->writeSlotNames(names.out()));
    send(clientId, names);
}

CErrorPtr CAudioInterfaceBase::onRequestInternalChannelCount()
{
    return answerWith(&CAudioInterfaceBase::sendInternalChannelCount);
}

CErrorPtr CAudioInterfaceBase::onRequestGroupCount()
{
    return answerWith(&CAudioInterfaceBase::sendGroupCount);
}

CErrorPtr CAudioInterfaceBase::onRequestIOChannelCounts()
{
    return answerWith(&CAudioInterfaceBase::sendIOChannelCounts);
}

CErrorPtr CAudioInterfaceBase::onRequestSampleRate()
{
    return answerWith(&CAudioInterfaceBase::sendSampleRate);
}

// Each of these holds the lock until the numbers are sent, so that the last to be sent are the newest.

void CAudioInterfaceBase::sendInternalChannelCount(std::uint32_t clientId)
{
    const CScopedLock held(lock());
    if (m_provider != nullptr)
        send(clientId,
             CParamInterfaceMessage("update-internal-channel-count").add(m_provider->getInternalChannelCount()));
}

void CAudioInterfaceBase::sendGroupCount(std::uint32_t clientId)
{
    const CScopedLock held(lock());
    if (m_provider != nullptr)
        send(clientId, CParamInterfaceMessage("update-group-count").add(m_provider->getGroupCount()));
}

void CAudioInterfaceBase::sendIOChannelCounts(std::uint32_t clientId)
{
    const CScopedLock held(lock());
    if (m_provider != nullptr)
        send(clientId, CParamInterfaceMessage("update-io-channel-counts")
                           .add(m_provider->getInputChannelCount())
                           .add(m_provider->getOutputChannelCount())
                           .add(m_provider->getSidechainChannelCount()));
}

void CAudioInterfaceBase::sendSampleRate(std::uint32_t clientId)
{
    const CScopedLock held(lock());
    if (m_provider != nullptr)
        send(clientId,
             CParamInterfaceMessage("update-sample-rate").add(++m_rateChangeCount).add(m_provider->getSampleRate()));
}

CErrorPtr CAudioInterfaceBase::onImportChannelLabels()
{
    QRB_TRY(checkMessageEnd(message()));
    if (m_provider != nullptr)
        m_provider->importChannelLabels();
    return {};
}

void CAudioInterfaceBase::beginChange(CAudioParam& param, std::int32_t group, std::int32_t element)
{
    if (m_provider != nullptr)
        m_provider->onBeginChange(param, group, element);
}

void CAudioInterfaceBase::endChange(CAudioParam& param, std::int32_t group, std::int32_t element)
{
    if (m_provider != nullptr)
        m_provider->onEndChange(param, group, element);
}

} // namespace qrb
