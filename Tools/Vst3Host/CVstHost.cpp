// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Vst3Host/CVstHost.h"

#include <pluginterfaces/base/funknown.h>
#include <pluginterfaces/base/ipluginbase.h>
#include <public.sdk/source/common/memorystream.h>

#include <cstring>

namespace vst3 {

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace {

constexpr const char* kEffectCategory = "Audio Module Class";

bool findEffect(IPluginFactory& factory, PClassInfo& out)
{
    for (int32 i = 0; i < factory.countClasses(); ++i)
        if (factory.getClassInfo(i, &out) == kResultOk && std::strcmp(out.category, kEffectCategory) == 0)
            return true;
    return false;
}

AudioBusBuffers busOf(std::span<void* const> channels)
{
    AudioBusBuffers bus;
    bus.numChannels = static_cast<int32>(channels.size());
    // The host's own arrays are only read through this.
    bus.channelBuffers32 = reinterpret_cast<float**>(const_cast<void**>(channels.data()));
    return bus;
}

} // namespace

void CVstHost::require(tresult result, const char* call)
{
    if (result != kResultOk)
        m_failure += (m_failure.empty() ? "" : ", ") + std::string(call);
}

CVstHost::CVstHost(IPluginFactory& factory, CRunLoop* runLoop)
{
    PClassInfo info;
    if (!findEffect(factory, info)) {
        m_failure = "no audio effect";
        return;
    }
    IComponent* made = nullptr;
    require(factory.createInstance(info.cid, IComponent::iid, reinterpret_cast<void**>(&made)), "createInstance");
    component = owned(made);
    processor = FUnknownPtr<IAudioProcessor>(component);
    controller = FUnknownPtr<IEditController>(component);
    if (processor == nullptr || controller == nullptr) {
        m_failure = "no audio effect with its controller in one";
        return;
    }
    m_isInitialized = component->initialize(runLoop) == kResultOk;
    if (!m_isInitialized)
        m_failure = "initialize";
    controller->setComponentHandler(&handler);
}

CVstHost::~CVstHost()
{
    if (controller != nullptr)
        controller->setComponentHandler(nullptr);
    if (m_isInitialized)
        component->terminate();
}

bool CVstHost::setLayout(SpeakerArrangement in, SpeakerArrangement out, SpeakerArrangement sidechain)
{
    SpeakerArrangement inputs[] = {in, sidechain};
    return processor->setBusArrangements(inputs, 2, &out, 1) == kResultTrue;
}

void CVstHost::activateBuses(bool isKeyed)
{
    require(component->activateBus(kAudio, kInput, 0, true), "activateBus");
    require(component->activateBus(kAudio, kOutput, 0, true), "activateBus");
    if (component->getBusCount(kAudio, kInput) > 1)
        require(component->activateBus(kAudio, kInput, 1, isKeyed), "activateBus");
}

void CVstHost::setup(double sampleRate, int32 sampleSize, int32 maxFrames, int32 mode)
{
    m_sampleSize = sampleSize;
    m_mode = mode;
    ProcessSetup setup{mode, sampleSize, maxFrames, sampleRate};
    require(processor->setupProcessing(setup), "setupProcessing");
}

void CVstHost::activate()
{
    require(component->setActive(true), "setActive");
    require(processor->setProcessing(true), "setProcessing");
}

void CVstHost::start(double sampleRate, int32 sampleSize)
{
    setup(sampleRate, sampleSize);
    activate();
}

void CVstHost::stop()
{
    processor->setProcessing(false);
    component->setActive(false);
}

void CVstHost::process(const CBlock& block, std::span<const CPoint> points)
{
    CParameterChanges changes(points);
    AudioBusBuffers inputs[] = {busOf(block.inputs), busOf(block.keys)};
    AudioBusBuffers output = busOf(block.outputs);
    ProcessData data;
    data.processMode = m_mode;
    data.symbolicSampleSize = m_sampleSize;
    data.inputParameterChanges = &changes;
    data.numInputs = block.inputs.empty() ? 0 : 2;
    data.inputs = inputs;
    data.numOutputs = block.outputs.empty() ? 0 : 1;
    data.outputs = &output;
    data.numSamples = block.frames;
    require(processor->process(data), "process");
}

template <class T>
CChannels CVstHost::playAs(const CChannels& in, std::size_t mainCount, std::span<const CPoint> points)
{
    // In place: the outputs lie in the memory of the main inputs.
    std::vector<std::vector<T>> memory;
    std::vector<void*> pointers;
    pointers.reserve(in.size());
    for (const std::vector<double>& channel : in)
        memory.emplace_back(channel.begin(), channel.end());
    for (std::vector<T>& channel : memory)
        pointers.push_back(channel.data());
    const std::span<void* const> all(pointers);
    process({all.first(mainCount), all.subspan(mainCount), all.first(mainCount),
             in.empty() ? 0 : static_cast<int32>(in[0].size())},
            points);
    CChannels out;
    for (std::size_t i = 0; i < mainCount; ++i)
        out.emplace_back(memory[i].begin(), memory[i].end());
    return out;
}

CChannels CVstHost::play(const CChannels& in, std::size_t mainCount, const std::vector<CPoint>& points)
{
    return m_sampleSize == kSample64 ? playAs<double>(in, mainCount, points) : playAs<float>(in, mainCount, points);
}

std::vector<char> CVstHost::save()
{
    MemoryStream stream;
    require(component->getState(&stream), "getState");
    return {stream.getData(), stream.getData() + stream.getSize()};
}

bool CVstHost::restore(std::vector<char> state) const
{
    MemoryStream stream(state.data(), static_cast<TSize>(state.size()));
    return component->setState(&stream) == kResultOk;
}

std::string CVstHost::text(ParamID id, double value)
{
    String128 wide{};
    require(controller->getParamStringByValue(id, value, wide), "getParamStringByValue");
    return narrowText(wide);
}

std::string narrowText(const String128 text)
{
    std::string narrow;
    for (std::size_t i = 0; i < 128 && text[i] != 0; ++i) {
        const auto unit = static_cast<unsigned>(text[i]);
        if (unit < 0x80) {
            narrow += static_cast<char>(unit);
        } else if (unit < 0x800) {
            narrow += static_cast<char>(0xC0U | unit >> 6);
            narrow += static_cast<char>(0x80U | (unit & 0x3FU));
        } else {
            narrow += static_cast<char>(0xE0U | unit >> 12);
            narrow += static_cast<char>(0x80U | (unit >> 6 & 0x3FU));
            narrow += static_cast<char>(0x80U | (unit & 0x3FU));
        }
    }
    return narrow;
}

void wideText(const std::string& text, String128 out)
{
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size() && count < 127;) {
        const auto lead = static_cast<unsigned char>(text[i++]);
        const int more = lead < 0xC0 ? 0 : lead < 0xE0 ? 1 : 2;
        unsigned unit = more == 0 ? lead : lead & (more == 1 ? 0x1FU : 0x0FU);
        for (int j = 0; j < more && i < text.size(); ++j)
            unit = unit << 6 | (static_cast<unsigned char>(text[i++]) & 0x3FU);
        out[count++] = static_cast<char16_t>(unit);
    }
    out[count] = 0;
}

} // namespace vst3
