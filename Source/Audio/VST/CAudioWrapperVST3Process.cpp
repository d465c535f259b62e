// SPDX-License-Identifier: GPL-3.0-or-later
// One block of the host. Thread: audio.
#include "Audio/HostParams/CAudioExtParam.h"
#include "Audio/VST/CAudioWrapperVST3.h"

#include <pluginterfaces/vst/ivstparameterchanges.h>
#include <pluginterfaces/vst/ivstprocesscontext.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace qrb {

using namespace Steinberg;      // NOLINT(google-build-using-namespace)
using namespace Steinberg::Vst; // NOLINT(google-build-using-namespace)

namespace {

constexpr int32 kMaxPoints = 32; ///< that a parameter takes in one block

/// Pointers to the channels of a bus; null for one that is missing, or silent where that counts.
template <std::size_t kSize>
void takeChannels(const AudioBusBuffers& bus, bool isDouble, bool isSilenceLeftOut, std::array<void*, kSize>& out)
{
    const int32 count = bus.channelBuffers32 != nullptr ? std::min<int32>(bus.numChannels, kSize) : 0;
    for (int32 i = 0; i < count; ++i) {
        const bool isSilent = isSilenceLeftOut && (bus.silenceFlags >> i & 1) != 0;
        void* const channel = isDouble ? static_cast<void*>(bus.channelBuffers64[i]) : bus.channelBuffers32[i];
        out[static_cast<std::size_t>(i)] = isSilent ? nullptr : channel;
    }
}

/// Clears the channels of a bus from one on.
void clearChannels(AudioBusBuffers& bus, int32 first, int32 frames, bool isDouble)
{
    if (bus.channelBuffers32 == nullptr || frames <= 0)
        return;
    const std::size_t bytes = static_cast<std::size_t>(frames) * (isDouble ? sizeof(double) : sizeof(float));
    for (int32 i = first; i < bus.numChannels; ++i) {
        void* const channel = isDouble ? static_cast<void*>(bus.channelBuffers64[i]) : bus.channelBuffers32[i];
        if (channel != nullptr)
            std::memset(channel, 0, bytes);
        if (i < 64)
            bus.silenceFlags |= uint64{1} << i;
    }
}

bool isUsable(const AudioBusBuffers* buses, int32 count)
{
    return count > 0 && buses != nullptr && buses[0].numChannels > 0 && buses[0].channelBuffers32 != nullptr;
}

} // namespace

tresult PLUGIN_API CAudioWrapperVST3::process(ProcessData& data)
{
    if (!m_isInitialized)
        return kResultFalse;
    const bool isDouble = data.symbolicSampleSize == kSample64;
    const bool isRunnable = data.numSamples > 0 && isActive() && isUsable(data.inputs, data.numInputs) &&
                            isUsable(data.outputs, data.numOutputs);
    takeContext(data);
    takeChanges(data, !isRunnable);
    if (data.outputs != nullptr) {
        for (int32 bus = 0; bus < data.numOutputs; ++bus) {
            data.outputs[bus].silenceFlags = 0;
            clearChannels(data.outputs[bus], isRunnable && bus == 0 ? m_outputCount : 0, data.numSamples, isDouble);
        }
    }
    if (!isRunnable)
        return kResultOk;
    m_isProcessing = true;
    CChannelPointers inputs{};
    CChannelPointers sidechain{};
    CChannelPointers outputs{};
    takeChannels(data.inputs[0], isDouble, true, inputs);
    if (data.numInputs > 1)
        takeChannels(data.inputs[1], isDouble, true, sidechain);
    takeChannels(data.outputs[0], isDouble, false, outputs);
    announceFormats(isDouble, sidechain.data());
    processBlock(inputs.data(), outputs.data(), data.numSamples);
    return kResultOk;
}

void CAudioWrapperVST3::takeContext(const ProcessData& data)
{
    setOffline(data.processMode == kOffline);
    if (data.processContext == nullptr)
        return;
    const uint32 state = data.processContext->state;
    if ((state & ProcessContext::kTempoValid) != 0)
        setHostBPM(data.processContext->tempo);
    setHostRecording((state & ProcessContext::kRecording) != 0);
}

void CAudioWrapperVST3::takeChanges(const ProcessData& data, bool isAtOnce)
{
    if (data.inputParameterChanges == nullptr)
        return;
    const int32 count = data.inputParameterChanges->getParameterCount();
    for (int32 i = 0; i < count; ++i) {
        if (IParamValueQueue* const queue = data.inputParameterChanges->getParameterData(i))
            takeQueue(*queue, isAtOnce);
    }
}

void CAudioWrapperVST3::takeQueue(IParamValueQueue& queue, bool isAtOnce)
{
    const int32 count = queue.getPointCount();
    if (count < 1)
        return;
    const int32 kept = std::min(count, kMaxPoints);
    for (int32 i = 0; i < kept - 1 && !isAtOnce; ++i)
        takePoint(queue, static_cast<int32>(int64{i} * count / kept), false);
    takePoint(queue, count - 1, isAtOnce); // where the curve ends is always exact
}

void CAudioWrapperVST3::takePoint(IParamValueQueue& queue, int32 point, bool isAtOnce)
{
    int32 offset = 0;
    ParamValue value = 0.0;
    if (queue.getPoint(point, offset, value) != kResultTrue || !std::isfinite(value))
        return;
    value = std::clamp(value, 0.0, 1.0);
    const ParamID id = queue.getParameterId();
    const std::size_t count = extParams().size();
    if (id == count)
        m_programWish = value;
    if (id >= count || (isAtOnce && extParams()[id]->trySetNormal(value)))
        return;
    addEvent({.offset = std::max(offset, 0), .index = static_cast<int>(id), .value = value});
}

} // namespace qrb
