// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/VST/CVstHost.h"

#include <algorithm>
#include <gtest/gtest.h>

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace {

/// Points of one block, as many as wished a parameter.
class CQueue final : public IParamValueQueue {
public:
    explicit CQueue(ParamID id) : m_id(id) {}
    virtual ~CQueue() = default;

    ParamID PLUGIN_API getParameterId() override { return m_id; }
    int32 PLUGIN_API getPointCount() override { return static_cast<int32>(points.size()); }
    tresult PLUGIN_API getPoint(int32 index, int32& offset, ParamValue& value) override
    {
        offset = points[static_cast<std::size_t>(index)].offset;
        value = points[static_cast<std::size_t>(index)].value;
        return kResultTrue;
    }
    tresult PLUGIN_API addPoint(int32, ParamValue, int32&) override { return kResultFalse; }
    tresult PLUGIN_API queryInterface(const TUID, void** out) override { return *out = nullptr, kNoInterface; }
    uint32 PLUGIN_API addRef() override { return 1; }
    uint32 PLUGIN_API release() override { return 1; }

    std::vector<CPoint> points;

private:
    ParamID m_id;
};

class CChanges final : public IParameterChanges {
public:
    explicit CChanges(const std::vector<CPoint>& points)
    {
        for (const CPoint& point : points) {
            auto queue = std::find_if(m_queues.begin(), m_queues.end(),
                                      [&](CQueue& other) { return other.getParameterId() == point.id; });
            if (queue == m_queues.end())
                queue = m_queues.insert(queue, CQueue(point.id));
            queue->points.push_back(point);
        }
    }
    virtual ~CChanges() = default;

    int32 PLUGIN_API getParameterCount() override { return static_cast<int32>(m_queues.size()); }
    IParamValueQueue* PLUGIN_API getParameterData(int32 index) override
    {
        return &m_queues[static_cast<std::size_t>(index)];
    }
    IParamValueQueue* PLUGIN_API addParameterData(const ParamID&, int32&) override { return nullptr; }
    tresult PLUGIN_API queryInterface(const TUID, void** out) override { return *out = nullptr, kNoInterface; }
    uint32 PLUGIN_API addRef() override { return 1; }
    uint32 PLUGIN_API release() override { return 1; }

private:
    std::vector<CQueue> m_queues;
};

template <class T>
T** channelsOf(AudioBusBuffers& bus)
{
    return reinterpret_cast<T**>(bus.channelBuffers32);
}

} // namespace

CVstHost::CVstHost(IPluginFactory& factory)
{
    PClassInfo info;
    EXPECT_EQ(factory.getClassInfo(0, &info), kResultOk);
    IComponent* made = nullptr;
    EXPECT_EQ(factory.createInstance(info.cid, IComponent::iid, reinterpret_cast<void**>(&made)), kResultOk);
    component = owned(made);
    processor = FUnknownPtr<IAudioProcessor>(component);
    controller = FUnknownPtr<IEditController>(component);
    EXPECT_EQ(component->initialize(nullptr), kResultOk);
    controller->setComponentHandler(&handler);
}

CVstHost::~CVstHost()
{
    controller->setComponentHandler(nullptr);
    EXPECT_EQ(component->terminate(), kResultOk);
}

bool CVstHost::setLayout(SpeakerArrangement in, SpeakerArrangement out, SpeakerArrangement sidechain)
{
    SpeakerArrangement inputs[] = {in, sidechain};
    return processor->setBusArrangements(inputs, 2, &out, 1) == kResultTrue;
}

void CVstHost::start(double sampleRate, int32 sampleSize)
{
    m_sampleSize = sampleSize;
    ProcessSetup setup{kRealtime, sampleSize, 1024, sampleRate};
    EXPECT_EQ(processor->setupProcessing(setup), kResultOk);
    EXPECT_EQ(component->setActive(true), kResultOk);
    EXPECT_EQ(processor->setProcessing(true), kResultOk);
}

void CVstHost::stop()
{
    processor->setProcessing(false);
    component->setActive(false);
}

template <class T>
CChannels CVstHost::playAs(const CChannels& in, std::size_t mainCount, ProcessData& data)
{
    // In place: the outputs lie in the memory of the main inputs.
    std::vector<std::vector<T>> memory;
    std::vector<T*> pointers;
    for (const std::vector<double>& channel : in)
        memory.emplace_back(channel.begin(), channel.end());
    for (std::vector<T>& channel : memory)
        pointers.push_back(channel.data());
    AudioBusBuffers inputs[2];
    inputs[0].numChannels = static_cast<int32>(mainCount);
    inputs[0].channelBuffers32 = reinterpret_cast<float**>(pointers.data());
    inputs[1].numChannels = static_cast<int32>(in.size() - mainCount);
    inputs[1].channelBuffers32 = reinterpret_cast<float**>(pointers.data() + mainCount);
    AudioBusBuffers output = inputs[0];
    data.numInputs = in.empty() ? 0 : 2;
    data.inputs = inputs;
    data.numOutputs = in.empty() ? 0 : 1;
    data.outputs = &output;
    data.numSamples = in.empty() ? 0 : static_cast<int32>(in[0].size());
    EXPECT_EQ(processor->process(data), kResultOk);
    CChannels out;
    for (std::size_t i = 0; i < mainCount; ++i)
        out.emplace_back(memory[i].begin(), memory[i].end());
    return out;
}

CChannels CVstHost::play(const CChannels& in, std::size_t mainCount, const std::vector<CPoint>& points)
{
    CChanges changes(points);
    ProcessData data;
    data.processMode = kRealtime;
    data.symbolicSampleSize = m_sampleSize;
    data.inputParameterChanges = &changes;
    return m_sampleSize == kSample64 ? playAs<double>(in, mainCount, data) : playAs<float>(in, mainCount, data);
}

std::vector<char> CVstHost::save() const
{
    MemoryStream stream;
    EXPECT_EQ(component->getState(&stream), kResultOk);
    return {stream.getData(), stream.getData() + stream.getSize()};
}

bool CVstHost::restore(std::vector<char> state) const
{
    MemoryStream stream(state.data(), static_cast<TSize>(state.size()));
    return component->setState(&stream) == kResultOk;
}

std::string CVstHost::text(ParamID id, double value) const
{
    String128 wide{};
    EXPECT_EQ(controller->getParamStringByValue(id, value, wide), kResultTrue);
    std::string narrow;
    for (std::size_t i = 0; i < 128 && wide[i] != 0; ++i)
        narrow += static_cast<char>(wide[i]);
    return narrow;
}
