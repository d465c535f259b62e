// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/VST/CAudioWrapperVST3.h"

#include "Audio/HostParams/CAudioExtParam.h"
#include "Audio/HostParams/SpeakerNames.h"
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Audio/VST/CAudioWrapperVST3Parameter.h"
#include "Audio/VST/CAudioWrapperVST3ProgramParameter.h"
#include "Audio/VST/CInputStreamVST.h"
#include "Audio/VST/COutputStreamVST.h"
#include "Platform/CSystemThread.h"

#include <cmath>

namespace qrb {

using namespace Steinberg;      // NOLINT(google-build-using-namespace)
using namespace Steinberg::Vst; // NOLINT(google-build-using-namespace)

CAudioWrapperVST3::CAudioWrapperVST3(FUnknown* factoryContext) : m_factoryContext(factoryContext) {}

CAudioWrapperVST3::~CAudioWrapperVST3()
{
    if (m_timer != nullptr)
        m_timer->stop();
    disconnectClients();
    parameters.removeAll(); // they lead to objects of the tree
}

tresult PLUGIN_API CAudioWrapperVST3::initialize(FUnknown* context)
{
    const tresult result = CSingleComponentEffect::initialize(context);
    if (result != kResultOk)
        return result;
    m_owner = platform::CSystemThread::currentId();
    if (!m_isInitialized) {
        if (CErrorPtr failed = init()) {
            reportError(std::move(failed));
            static_cast<void>(CSingleComponentEffect::terminate());
            return kResultFalse;
        }
        m_isInitialized = true;
    }
    addBuses({});
    m_eventInputs.push_back(owned(new EventBus(STR16("MIDI In"), kMain, BusInfo::kDefaultActive, 1)));
    m_eventInputs.back()->setActive(true);
    addParameters();
    m_timer = owned(new CIdleTimer([this] { runOwner(); }));
    if (!m_timer->start(context))
        m_timer->start(m_factoryContext);
    return kResultOk;
}

tresult PLUGIN_API CAudioWrapperVST3::terminate()
{
    if (m_timer != nullptr)
        m_timer->stop();
    m_timer = nullptr;
    if (m_isInitialized)
        stop();
    m_isProcessing = false;
    m_programParam = nullptr;
    return CSingleComponentEffect::terminate();
}

void CAudioWrapperVST3::addParameters()
{
    for (CAudioExtParam* const param : extParams())
        parameters.addParameter(new CAudioWrapperVST3Parameter(*param, m_isProcessing));
    const ParamID programId = static_cast<ParamID>(extParams().size());
    m_programParam = new CAudioWrapperVST3ProgramParameter(*paramRegistry(), programId);
    parameters.addParameter(m_programParam);
    m_gestures.resize(extParams().size());
}

CAudioWrapperVST3Parameter* CAudioWrapperVST3::hostParam(std::int32_t index)
{
    const bool isKnown = index >= 0 && index + 1 < parameters.getParameterCount(); // the last one is the program
    return isKnown ? static_cast<CAudioWrapperVST3Parameter*>(parameters.getParameterByIndex(index)) : nullptr;
}

// What waits for the owner's thread, and what the host is told from there.

void CAudioWrapperVST3::runOwner(ECallBack callBack)
{
    // The host may call back while it is told something.
    if (!m_isInitialized || m_isOwnerRunning || platform::CSystemThread::currentId() != m_owner)
        return;
    m_isOwnerRunning = true;
    takeProgramWish();
    runIdle();
    if (callBack == ECallBack::now)
        tellHost();
    m_isOwnerRunning = false;
}

void CAudioWrapperVST3::takeProgramWish()
{
    if (m_programParam == nullptr || platform::CSystemThread::currentId() != m_owner)
        return;
    const double wish = m_programWish.exchange(-1.0);
    if (wish >= 0.0)
        m_programParam->setNormalized(wish);
}

void CAudioWrapperVST3::tellHost()
{
    int32 flags = 0;
    if (std::exchange(m_areValuesNew, false))
        flags |= kParamValuesChanged;
    if (m_isLatencyNew.exchange(false))
        flags |= kLatencyChanged;
    const bool areNamesNew = std::exchange(m_areNamesNew, false);
    const IPtr<IComponentHandler> handler(getComponentHandler()); // the host may take it back meanwhile
    if (handler == nullptr)
        return;
    const FUnknownPtr<IUnitHandler> unitHandler(handler);
    if (areNamesNew && unitHandler)
        unitHandler->notifyProgramListChange(CAudioWrapperVST3ProgramParameter::kProgramListId, kAllProgramInvalid);
    if (flags != 0)
        handler->restartComponent(flags);
}

void CAudioWrapperVST3::onLatencyChange()
{
    CAudioWrapper::onLatencyChange();
    m_isLatencyNew = true;
}

void CAudioWrapperVST3::onExtParamChange(std::int32_t index, double normal)
{
    CAudioWrapperVST3Parameter* const param = hostParam(index);
    if (param == nullptr)
        return;
    param->show(normal);
    if (m_gestures[static_cast<std::size_t>(index)] != 0)
        performEdit(static_cast<ParamID>(index), normal);
    else
        m_areValuesNew = true;
}

void CAudioWrapperVST3::onProgramChange()
{
    if (m_programParam == nullptr)
        return;
    m_programParam->showCurrent();
    m_areValuesNew = true;
    m_areNamesNew = true;
}

void CAudioWrapperVST3::beginEdit(std::int32_t index)
{
    if (hostParam(index) != nullptr && m_gestures[static_cast<std::size_t>(index)]++ == 0)
        EditController::beginEdit(static_cast<ParamID>(index));
}

void CAudioWrapperVST3::endEdit(std::int32_t index)
{
    if (hostParam(index) == nullptr || m_gestures[static_cast<std::size_t>(index)] == 0)
        return;
    if (--m_gestures[static_cast<std::size_t>(index)] == 0)
        EditController::endEdit(static_cast<ParamID>(index));
}

tresult PLUGIN_API CAudioWrapperVST3::setParamNormalized(ParamID id, ParamValue value)
{
    const CHostCall call(*this, ECallBack::later);
    return EditController::setParamNormalized(id, value);
}

tresult PLUGIN_API CAudioWrapperVST3::getParamStringByValue(ParamID id, ParamValue value, String128 text)
{
    const CHostCall call(*this); // a host that has set a value shows it, and so hears of what else has changed
    return EditController::getParamStringByValue(id, value, text);
}

tresult PLUGIN_API CAudioWrapperVST3::setComponentHandler(IComponentHandler* handler)
{
    const CHostCall call(*this);
    return EditController::setComponentHandler(handler);
}

tresult PLUGIN_API CAudioWrapperVST3::setState(IBStream* state)
{
    if (state == nullptr || !m_isInitialized)
        return kResultFalse;
    const CHostCall call(*this);
    CInputStreamVST stream(*state);
    if (CErrorPtr failed = loadState(stream)) {
        reportError(std::move(failed));
        return kResultFalse;
    }
    onProgramChange(); // the load's own sender is not told
    return kResultOk;
}

tresult PLUGIN_API CAudioWrapperVST3::getState(IBStream* state)
{
    if (state == nullptr || !m_isInitialized)
        return kResultFalse;
    takeProgramWish();
    COutputStreamVST stream(*state);
    if (CErrorPtr failed = saveState(stream)) {
        reportError(std::move(failed));
        return kResultFalse;
    }
    return kResultOk;
}

// Buses and the begin of processing.

void CAudioWrapperVST3::addBuses(const CBusLayout& layout)
{
    const auto activity = [this](BusDirection dir, int32 index, bool fallback) {
        const AudioBus* const bus = findAudioBus(dir, index);
        return bus != nullptr ? bus->isActive() != 0 : fallback;
    };
    const bool states[] = {activity(kInput, 0, true), activity(kOutput, 0, true), activity(kInput, 1, false)};
    m_audioInputs.clear();
    m_audioOutputs.clear();
    m_audioInputs.push_back(owned(new AudioBus(STR16("Audio In"), kMain, BusInfo::kDefaultActive, layout.input)));
    m_audioOutputs.push_back(owned(new AudioBus(STR16("Audio Out"), kMain, BusInfo::kDefaultActive, layout.output)));
    m_audioInputs[0]->setActive(states[0]);
    m_audioOutputs[0]->setActive(states[1]);
    if (project().useSidechain) {
        m_audioInputs.push_back(owned(new AudioBus(STR16("Sidechain"), kAux, 0, layout.sidechain)));
        m_audioInputs[1]->setActive(states[2]);
    }
}

CBusLayout CAudioWrapperVST3::currentLayout()
{
    CBusLayout layout;
    getBusArrangement(kInput, 0, layout.input);
    getBusArrangement(kOutput, 0, layout.output);
    getBusArrangement(kInput, 1, layout.sidechain);
    return layout;
}

void CAudioWrapperVST3::announceLayout()
{
    const CBusLayout layout = currentLayout();
    const AudioBus* const sidechain = findAudioBus(kInput, 1);
    const bool isKeyed = sidechain != nullptr && sidechain->isActive() != 0;
    m_inputCount = channelCountOf(layout.input);
    m_outputCount = channelCountOf(layout.output);
    m_sidechainCount = isKeyed ? channelCountOf(layout.sidechain) : 0;
    reportLayout(speakerNames(layout.input), isKeyed ? speakerNames(layout.sidechain) : CArray<CString>());
}

void CAudioWrapperVST3::announceFormats(bool isDouble, const void* const* sidechain)
{
    setInputs({.channelCount = m_inputCount, .isDouble = isDouble},
              {.channelCount = m_sidechainCount, .isDouble = isDouble}, sidechain);
    setOutputs({.channelCount = m_outputCount, .isDouble = isDouble});
}

tresult PLUGIN_API CAudioWrapperVST3::activateBus(MediaType type, BusDirection dir, int32 index, TBool state)
{
    const CHostCall call(*this);
    const tresult result = CSingleComponentEffect::activateBus(type, dir, index, state);
    if (result == kResultTrue && type == kAudio && !m_isProcessing)
        announceLayout();
    return result;
}

tresult PLUGIN_API CAudioWrapperVST3::setBusArrangements(SpeakerArrangement* inputs, int32 inputCount,
                                                         SpeakerArrangement* outputs, int32 outputCount)
{
    if (inputs == nullptr || outputs == nullptr || inputCount < 1 || outputCount < 1 || !m_isInitialized ||
        m_isProcessing)
        return kResultFalse;
    const CHostCall call(*this);
    CBusLayout wish = currentLayout();
    wish.input = inputs[0];
    wish.output = outputs[0];
    if (project().useSidechain && inputCount >= 2)
        wish.sidechain = inputs[1];
    const CBusLayout layout = constrainLayout(wish, project());
    addBuses(layout);
    announceLayout();
    const bool areAllThere = inputCount <= getBusCount(kAudio, kInput) && outputCount == 1;
    return layout == wish && areAllThere ? kResultTrue : kResultFalse;
}

tresult PLUGIN_API CAudioWrapperVST3::canProcessSampleSize(int32 size)
{
    return size == kSample32 || size == kSample64 ? kResultTrue : kResultFalse;
}

uint32 PLUGIN_API CAudioWrapperVST3::getLatencySamples()
{
    return m_isInitialized ? static_cast<uint32>(CAudioWrapper::getLatencySamples()) : 0;
}

uint32 PLUGIN_API CAudioWrapperVST3::getTailSamples()
{
    return m_isInitialized ? static_cast<uint32>(CAudioWrapper::getTailSamples()) : 0;
}

uint32 PLUGIN_API CAudioWrapperVST3::getProcessContextRequirements()
{
    uint32 needs = 0;
    if (project().useHostBPM)
        needs |= kNeedTempo;
    if (project().useHostRecording)
        needs |= kNeedTransportState;
    return needs;
}

tresult PLUGIN_API CAudioWrapperVST3::setupProcessing(ProcessSetup& setup)
{
    const bool isUsable = std::isfinite(setup.sampleRate) && setup.sampleRate > 0.0 &&
                          canProcessSampleSize(setup.symbolicSampleSize) == kResultTrue;
    if (!isUsable || !m_isInitialized)
        return kResultFalse;
    const CHostCall call(*this);
    stop();
    setSampleRate(setup.sampleRate);
    setOffline(setup.processMode == kOffline);
    announceLayout();
    announceFormats(setup.symbolicSampleSize == kSample64);
    start();
    m_isLatencyNew = false; // the host asks for it before it processes
    return kResultOk;
}

tresult PLUGIN_API CAudioWrapperVST3::setActive(TBool state)
{
    if (!m_isInitialized)
        return kResultFalse;
    const CHostCall call(*this);
    stop();
    m_isProcessing = false;
    if (state != 0) {
        announceLayout();
        announceFormats(false);
        start();
        m_isLatencyNew = false; // as above
    }
    return kResultOk;
}

tresult PLUGIN_API CAudioWrapperVST3::setProcessing(TBool state)
{
    if (state == 0)
        m_isProcessing = false;
    return kResultOk;
}

} // namespace qrb
