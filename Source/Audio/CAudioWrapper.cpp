// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioWrapper.h"

#include "Audio/CAudioEnv.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioProcessBase.h"
#include "Audio/CAudioProcessDefBase.h"
#include "Audio/CSampleBufferPool.h"
#include "Audio/HostParams/CAudioCCTable.h"
#include "Audio/HostParams/CAudioExtParam.h"
#include "Audio/HostParams/CAudioExtParamList.h"
#include "Audio/Interface/CAudioInterfaceBase.h"
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Audio/Processes/CModOutput.h"
#include "Audio/Viz/CAudioVizCollector.h"
#include "Core/CAppData.h"
#include "Core/CApplication.h"
#include "Core/CLog.h"
#include "Core/CNumberText.h"
#include "Core/CObject.h"
#include "Core/CProcessState.h"
#include "Core/CQrbMemAllocator.h"
#include "Core/CWorkerThreadPool.h"
#include "Platform/Clock.h"

#include <algorithm>
#include <cmath>

namespace qrb {

namespace {

constexpr const char* kPluginName = "plugin";
constexpr const char* kMainNodeName = "plugin.modMain";
constexpr const char* kOutputNodeName = "plugin.modOutput";
constexpr int kMaxLines = 16;
constexpr int kMaxOversamplingMode = 3;
constexpr double kLowRateEnd = 72000.0;
constexpr double kHighRateBegin = 144000.0;

/// Makes blocks ready for what the audio thread builds when it rewires, so that it need not ask the system then.
void prefillAllocator()
{
    constexpr std::size_t kLargest = 1024;
    constexpr std::size_t kCount = 64;
    for (std::size_t size = 16; size <= kLargest; size += 16)
        CQrbMemAllocator::prefill(size, kCount);
    CQrbMemAllocator::prefill(sizeof(CAudioProcessPort), kCount); // the one large thing that every node has
}

} // namespace

CAudioWrapper::CAudioWrapper() = default;

CAudioWrapper::~CAudioWrapper()
{
    leaveTree();
    m_plan.clear();
    m_inputSource.disconnectAll();
    m_lastNode.reset();
    m_mainNode.reset();
    if (m_root != nullptr)
        m_root->release();
    // Idle threads do not outlive the instance that used them; another one makes its own again.
    if (CProcessState* const state = processStateOrNull())
        state->workers->clearWorkers();
}

void CAudioWrapper::leaveTree()
{
    if (m_paramRegistry == nullptr) // nothing has been joined yet
        return;
    disconnectClients();
    m_programListener.detach();
    m_windowSizeListener.detach();
    m_paramRegistry->setRoutingListener(nullptr);
    for (CAudioExtParam* const param : extParams())
        param->setBridge(nullptr, param->index());
    m_paramCollector->cancelDeferred(m_beginTarget);
    m_paramCollector->cancelDeferred(m_endTarget);
}

CErrorPtr CAudioWrapper::init()
{
    const double begin = platform::clockSeconds();
    if (processStateOrNull() == nullptr)
        return QRB_ERROR("@qrbstr_CAudioWrapper_init_NoApp No application object created.");
    QRB_TRY(createTree());
    QRB_TRY(findObjects());
    m_pool = std::make_unique<CSampleBufferPool>();
    m_pool->prefill(1, kMaxLines);
    m_pool->prefill(kMaxSubBlock, kMaxLines);
    prefillAllocator();
    attachHostParams();
    QRB_TRY(createNodes());
    m_paramCollector->completeRegistries();
    attachWindowSize();
    attachExtParams();
    setChannelCounts(1, 0);
    setOutputs({.channelCount = 1});
    readSettings();
    setOffline(false);
    m_interfaceBase->setDataProvider(this);
    const double now = platform::clockSeconds();
    logFormat("CAudioWrapper init time: %.4f s @ %.4f s", now - begin, now - processState().clockBase);
    return nullptr;
}

CErrorPtr CAudioWrapper::createTree()
{
    QRB_TRY(CApplication::initRootObject(m_root, {}));
    CObject* audio = nullptr;
    QRB_TRY(m_root->findObjectChecked("shared::audio", audio));
    CObject* plugin = nullptr;
    QRB_TRY(m_root->createChild(plugin, audio->getAttrString("plugin-tag"), kPluginName, ERequireTemplate::yes));
    CObject* project = nullptr;
    QRB_TRY(m_root->findObjectChecked("shared::project", project));
    return m_project.read(*project);
}

CErrorPtr CAudioWrapper::findObjects()
{
    QRB_TRY(m_root->findObjectChecked("plugin.audio-env", m_env));
    QRB_TRY(m_root->findObjectChecked("plugin.param-collector", m_paramCollector));
    QRB_TRY(m_root->findObjectChecked("plugin.viz-collector", m_vizCollector));
    QRB_TRY(m_root->findObjectChecked("plugin.interface-base", m_interfaceBase));
    QRB_TRY(m_root->findObjectChecked("plugin.ext-param-list", m_extParams));
    QRB_TRY(m_root->findObjectChecked("plugin.cctable", m_ccTable));
    QRB_TRY(m_root->findObjectChecked("plugin.param-registry", m_paramRegistry));
    return nullptr;
}

void CAudioWrapper::attachHostParams()
{
    m_hostOversamplingMode.attach(m_paramCollector->getParam("plugin.modMain.host-oversampling-mode"));
    m_hostOffline.attach(m_paramCollector->getParam("plugin.modMain.host-offline"));
    m_hostLatencyChange.attach(m_paramCollector->getParam("plugin.modMain.host-latency-change"));
    if (m_project.useHostBPM)
        m_hostBPMParam.attach(m_paramCollector->getParam("plugin.modMain.host-bpm"));
    if (m_project.useHostRecording)
        m_hostRecordingParam.attach(m_paramCollector->getParam("plugin.modMain.host-rec"));
}

CErrorPtr CAudioWrapper::createNodes()
{
    CAudioProcessSetup setup;
    setup.context = {m_paramCollector, m_env, m_pool.get(), &m_graphChanges, m_vizCollector};
    CAudioProcessDefBase* definition = nullptr;
    QRB_TRY(m_root->findObjectChecked("shared::audio.modMain", definition));
    setup.definition = definition;
    setup.name = kMainNodeName;
    QRB_TRY(instantiateTopProcess(setup, m_mainNode));
    QRB_TRY(m_root->findObjectChecked("shared::audio.modOutput", definition));
    setup.definition = definition;
    setup.name = kOutputNodeName;
    QRB_TRY(instantiateTopProcess(setup, m_lastNode));
    m_outputNode = dynamic_cast<CModOutput*>(m_lastNode.get());
    if (m_outputNode == nullptr)
        return QRB_ERROR("@qrbstr_CAudioWrapper_init_InvalidOutProcessType Output process object "
                         "'shared::audio.modOutput' is not of required 'CModOutput' type.");
    m_inputSource.connect(0, m_mainNode->input(), 0);
    m_mainNode->output().connect(0, m_lastNode->input(), 0);
    return nullptr;
}

void CAudioWrapper::readSettings()
{
    CAppData* const settings = CAppData::findScope("group");
    std::int32_t level = 0;
    if (settings != nullptr && parseInteger(settings->getString("oversampling-level", "1"), level))
        m_oversamplingLevel = level;
    const CString isForced = settings != nullptr ? settings->getString("force-2ch", "0") : CString("0");
    m_isTwoChannelForced = isForced == "1" || isForced == "true";
}

void CAudioWrapper::setSampleRate(double rate)
{
    if (rate == m_env->sampleRate() || !(rate > 0.0))
        return;
    {
        const platform::CScopedLock guard(m_env->lock());
        m_env->setSampleRate(rate);
        m_isReconfigureDue = true;
    }
    noteNewSetup();
    updateOversamplingMode();
}

void CAudioWrapper::setInputs(const CHostBusFormat& main, const CHostBusFormat& sidechain,
                              const void* const* sidechainBuffers)
{
    const bool hasNewCounts =
        main.channelCount != m_inputFormat.channelCount || sidechain.channelCount != m_sidechainFormat.channelCount;
    if (hasNewCounts)
        setChannelCounts(main.channelCount, sidechain.channelCount);
    m_inputFormat = main;
    m_sidechainFormat = sidechain;
    m_sidechainBuffers = sidechainBuffers;
}

void CAudioWrapper::setChannelCounts(int main, int sidechain)
{
    const platform::CScopedLock guard(m_env->lock());
    m_inputFormat.channelCount = main;
    m_sidechainFormat.channelCount = sidechain;
    m_isReconfigureDue = true;
    m_toldInputs = main;
    m_toldSidechain = sidechain;
    noteNewSetup();
}

void CAudioWrapper::setOutputs(const CHostBusFormat& format)
{
    if (format.channelCount != m_outputNode->format().channelCount) {
        const platform::CScopedLock guard(m_env->lock());
        m_isReconfigureDue = true;
    }
    if (m_toldOutputs.exchange(format.channelCount) != format.channelCount)
        noteNewSetup();
    m_outputNode->setFormat(format);
}

void CAudioWrapper::start()
{
    {
        const platform::CScopedLock guard(m_env->lock());
        if (m_env->isActive())
            return;
        m_env->setActive(true);
    }
    primeGraph();
    setClientsActive(true);
}

void CAudioWrapper::stop()
{
    {
        const platform::CScopedLock guard(m_env->lock());
        if (!m_env->isActive())
            return;
        m_env->setActive(false);
    }
    primeGraph();
    m_mainNode->reset();
    m_outputNode->reset();
    m_vizCollector->flush();
    setClientsActive(false);
}

void CAudioWrapper::setOffline(bool isOffline)
{
    if (isOffline != m_isOffline) {
        m_isOffline = isOffline;
        if (isOffline) // the user may have chosen another level for it meanwhile
            readSettings();
        m_hostOffline.set(isOffline ? 1.0 : 0.0);
    }
    updateOversamplingMode();
}

void CAudioWrapper::updateOversamplingMode()
{
    int mode = m_project.autoOversamplingMode - 1;
    if (m_isOffline) {
        const double rate = m_env->sampleRate();
        const int shift = rate < kLowRateEnd ? 1 : rate >= kHighRateBegin ? -1 : 0;
        mode =
            std::clamp(std::clamp(m_oversamplingLevel, -1, kMaxOversamplingMode + 1) + shift, 0, kMaxOversamplingMode);
    }
    if (mode == m_oversamplingMode)
        return;
    m_oversamplingMode = mode;
    m_hostOversamplingMode.set(mode);
}

void CAudioWrapper::setHostBPM(double bpm)
{
    if (!m_project.useHostBPM || bpm == m_hostBPM || !std::isfinite(bpm))
        return;
    m_hostBPM = bpm;
    m_hostBPMParam.set(bpm);
}

void CAudioWrapper::setHostRecording(bool isRecording)
{
    if (m_project.useHostRecording)
        m_hostRecordingParam.set(isRecording ? 1.0 : 0.0);
}

void CAudioWrapper::flushHostParams()
{
    m_hostOversamplingMode.flush();
    m_hostOffline.flush();
    m_hostLatencyChange.flush();
    m_hostBPMParam.flush();
    m_hostRecordingParam.flush();
}

void CAudioWrapper::onLatencyChange()
{
    m_isLatencyChangePending = true;
    m_hostLatencyChange.set(1.0);
}

void CAudioWrapper::onMidiEvent(const CExternalEvent&) {}

int CAudioWrapper::getLatencySamples()
{
    if (m_isLatencyChangePending.exchange(false))
        m_hostLatencyChange.set(0.0);
    if (m_isLatencyChangePending.load()) // changed again meanwhile: that must not be taken for seen
        m_hostLatencyChange.set(1.0);
    return m_env->latency();
}

std::int64_t CAudioWrapper::getTailSamples() const
{
    return roundHalfAway(m_project.tailSeconds.value_or(0.0) * m_env->sampleRate());
}

bool CAudioWrapper::isActive() const
{
    return m_env->isActive();
}

void CAudioWrapper::runIdle()
{
    tellSetup();
    m_paramCollector->runDeferred();
    if (m_isProgramChangePending.exchange(false))
        onProgramChange();
    if (m_isWindowSizeNew.exchange(false)) {
        const std::int32_t width = m_windowWidth;
        const std::int32_t height = m_windowHeight;
        computeWindowSize();
        if (m_windowWidth != width || m_windowHeight != height)
            static_cast<void>(resizeWindow(m_windowWidth, m_windowHeight));
    }
}

CString CAudioWrapper::fullName() const
{
    return kPluginName;
}

} // namespace qrb
