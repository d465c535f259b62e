// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Interface/CAudioInterfaceClient.h"

#include "Audio/Interface/CParamInterfaceMessage.h"
#include "Audio/Interface/ParamInterfaceFields.h"
#include "Audio/Viz/CAudioInterfaceVizProcessor.h"
#include "Core/CNumberText.h"

namespace qrb {

void CAudioInterfaceClient::declare(CObjectClassInfo& info)
{
    CParamInterfaceClient::declare(info);
    info.event<&CAudioInterfaceClient::onStartViz>("start-viz");
    info.event<&CAudioInterfaceClient::onStopViz>("stop-viz");
    info.event<&CAudioInterfaceClient::onClearClient>("clear-client");
    info.event<&CAudioInterfaceClient::onUpdateInternalChannelCount>("update-internal-channel-count");
    info.event<&CAudioInterfaceClient::onUpdateGroupCount>("update-group-count");
    info.event<&CAudioInterfaceClient::onUpdateIOChannelCounts>("update-io-channel-counts");
    info.event<&CAudioInterfaceClient::onUpdateSampleRate>("update-sample-rate");
    info.event<&CAudioInterfaceClient::onVizData>("viz-data");
    info.event<&CAudioInterfaceClient::onExportSlotNames>("export-slot-names");
}

CAudioInterfaceClient::CAudioInterfaceClient() = default;
CAudioInterfaceClient::~CAudioInterfaceClient() = default;

CErrorPtr CAudioInterfaceClient::initChilds()
{
    QRB_TRY(CParamInterfaceClient::initChilds());
    request("request-internal-channel-count");
    request("request-group-count");
    request("request-io-channel-counts");
    request("request-sample-rate");
    const CString names = getAttrString("group-names-param");
    if (!names.empty())
        static_cast<void>(listenParam(names, m_groupNames));
    return {};
}

void CAudioInterfaceClient::unlink()
{
    for (const std::int32_t id : m_vizIds.used())
        static_cast<void>(ask(CParamInterfaceMessage("unlisten-viz").add(id)));
    m_vizProcessor = nullptr;
    CParamInterfaceClient::unlink();
}

void CAudioInterfaceClient::request(const char* event)
{
    tell(CParamInterfaceMessage(event).add(clientId()));
}

std::int32_t CAudioInterfaceClient::listenViz(std::int32_t kind, const CString& name)
{
    const std::int32_t id = m_vizIds.take(clientId());
    if (id != 0)
        tell(CParamInterfaceMessage("listen-viz").add(kind).add(name).add(id));
    return id;
}

void CAudioInterfaceClient::unlistenViz(std::int32_t id)
{
    tell(CParamInterfaceMessage("unlisten-viz").add(id));
    m_vizIds.give(id);
}

void CAudioInterfaceClient::requestVizData(double time)
{
    tell(CParamInterfaceMessage("request-viz-data").add(clientId()).add(time));
}

void CAudioInterfaceClient::requestExportSlotNames()
{
    request("request-export-slot-names");
}

void CAudioInterfaceClient::importChannelLabels()
{
    tell(CParamInterfaceMessage("import-channel-labels"));
}

CString CAudioInterfaceClient::getGroupName(std::int32_t group) const
{
    return m_groupNames.hasNames() ? m_groupNames.name(group) : formatInteger(std::int64_t{group} + 1);
}

CErrorPtr CAudioInterfaceClient::onStartViz()
{
    return m_vizProcessor != nullptr ? m_vizProcessor->onStartViz() : CErrorPtr();
}

CErrorPtr CAudioInterfaceClient::onStopViz()
{
    return m_vizProcessor != nullptr ? m_vizProcessor->onStopViz() : CErrorPtr();
}

CErrorPtr CAudioInterfaceClient::onClearClient()
{
    return m_vizProcessor != nullptr ? m_vizProcessor->onClearClient() : CErrorPtr();
}

CErrorPtr CAudioInterfaceClient::onVizData()
{
    return m_vizProcessor != nullptr ? m_vizProcessor->onVizData(message()) : CErrorPtr();
}

CErrorPtr CAudioInterfaceClient::onExportSlotNames()
{
    return m_vizProcessor != nullptr ? m_vizProcessor->onExportSlotNames(message()) : CErrorPtr();
}

CErrorPtr CAudioInterfaceClient::onUpdateInternalChannelCount()
{
    QRB_TRY(readLastFields(message(), m_internalChannelCount));
    return raiseEvent("update-internal-channel-count");
}

CErrorPtr CAudioInterfaceClient::onUpdateGroupCount()
{
    QRB_TRY(readLastFields(message(), m_groupCount));
    return raiseEvent("update-group-count");
}

CErrorPtr CAudioInterfaceClient::onUpdateIOChannelCounts()
{
    std::int32_t inputs = 0;
    std::int32_t outputs = 0;
    std::int32_t sidechain = 0;
    QRB_TRY(readLastFields(message(), inputs, outputs, sidechain));
    m_inputChannelCount = inputs;
    m_outputChannelCount = outputs;
    m_sidechainChannelCount = sidechain;
    return raiseEvent("update-io-channel-counts");
}

CErrorPtr CAudioInterfaceClient::onUpdateSampleRate()
{
    std::int32_t changeCount = 0;
    double rate = 0.0;
    QRB_TRY(readLastFields(message(), changeCount, rate));
    m_sampleRate = rate;
    return raiseEvent("update-sample-rate");
}

} // namespace qrb
