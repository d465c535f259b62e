// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioWrapper.h"
#include "Audio/HostParams/CAudioExtParam.h"
#include "Tools/Render/CProductModule.h"
#include "Tools/Vst3Host/CModuleFile.h"
#include "Tools/Vst3Host/CVstHost.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <pluginterfaces/vst/ivstunits.h>
#include <random>
#include <thread>

using namespace Steinberg;
using namespace Steinberg::Vst;
using vst3::CChannels;
using vst3::CPoint;

namespace {

constexpr ParamID kProgramId = 72;

/// The product's module.
class CModuleFile : public vst3::CModuleFile {
public:
    explicit CModuleFile(std::string error = {}) : vst3::CModuleFile(THUMPCRAFT_MODULE, error) { EXPECT_EQ(error, ""); }
    static bool isLoaded() { return vst3::CModuleFile::isLoaded(THUMPCRAFT_MODULE); }
};

/// Tells what was refused.
class CVstHost : public vst3::CVstHost {
public:
    using vst3::CVstHost::CVstHost;
    ~CVstHost() { EXPECT_EQ(failure(), ""); }
};

CChannels noise(std::size_t channels, std::size_t frames, std::uint32_t seed = 1)
{
    std::mt19937 engine(seed);
    CChannels out(channels, std::vector<double>(frames));
    for (std::vector<double>& channel : out) {
        for (double& sample : channel)
            sample = static_cast<double>(static_cast<float>(engine()) / 4294967296.0F - 0.5F);
    }
    return out;
}

double energy(const CChannels& channels)
{
    double sum = 0.0;
    for (const std::vector<double>& channel : channels) {
        for (const double sample : channel)
            sum += sample * sample;
    }
    return sum;
}

TEST(TestVst3Module, ComesAndGoesAHundredTimes)
{
    if (CModuleFile::isLoaded())
        GTEST_SKIP() << "another test has left it to the end of this thread";
    // What the module keeps of a thread goes with the thread, and the module not before that.
    std::thread([] {
        for (int i = 0; i < 100; ++i) {
            const CModuleFile module;
            ASSERT_NE(module.factory(), nullptr);
            if (i % 25 != 0)
                continue;
            CVstHost host(*module.factory());
            host.start();
            host.play(noise(2, 256), 2);
            host.stop();
        }
    }).join();
    static_cast<void>(CModuleFile::isLoaded()); // the loader lets go with the first closing behind the thread's end
    EXPECT_FALSE(CModuleFile::isLoaded());
}

TEST(TestVst3Module, TellsItsClass)
{
    const CModuleFile module;
    const FUnknownPtr<IPluginFactory2> factory(module.factory());
    PClassInfo2 info;
    ASSERT_EQ(factory->getClassInfo2(0, &info), kResultOk);
    const unsigned char id[] = {0x10, 0x2A, 0x3E, 0x7F, 0x5B, 0x4C, 0x8E, 0x4D,
                                0xA1, 0xF7, 0x2B, 0x9C, 0x0D, 0x6E, 0x4F, 0x31};
    EXPECT_EQ(std::memcmp(info.cid, id, sizeof id), 0);
    EXPECT_STREQ(info.name, "Thumpcraft");
    EXPECT_STREQ(info.subCategories, "Fx|Dynamics");
    void* other = nullptr;
    const TUID unknown{};
    EXPECT_NE(module.factory()->createInstance(unknown, IComponent::iid, &other), kResultOk);
}

class TestVst3Instance : public testing::Test {
protected:
    CModuleFile module;
    CVstHost host{*module.factory()};
};

TEST_F(TestVst3Instance, ShowsBusesParametersAndPrograms)
{
    BusInfo bus;
    ASSERT_EQ(host.component->getBusCount(kAudio, kInput), 2);
    ASSERT_EQ(host.component->getBusInfo(kAudio, kInput, 1, bus), kResultTrue);
    EXPECT_EQ(bus.busType, kAux);
    EXPECT_EQ(bus.flags & BusInfo::kDefaultActive, 0U);
    EXPECT_EQ(host.component->getBusCount(kEvent, kInput), 1);
    ASSERT_EQ(host.controller->getParameterCount(), 73);
    int bypasses = 0;
    for (int32 i = 0; i < 72; ++i) {
        ParameterInfo info;
        ASSERT_EQ(host.controller->getParameterInfo(i, info), kResultTrue);
        EXPECT_EQ(info.id, static_cast<ParamID>(i));
        bypasses += (info.flags & ParameterInfo::kIsBypass) != 0 ? 1 : 0;
        // What a parameter shows, it takes.
        String128 shown{};
        double value = -1.0;
        ASSERT_EQ(host.controller->getParamStringByValue(info.id, info.defaultNormalizedValue, shown), kResultTrue);
        ASSERT_EQ(host.controller->getParamValueByString(info.id, shown, value), kResultTrue);
        const bool isNumberList = i == 3; // there a number is taken for an index
        EXPECT_TRUE(isNumberList || std::abs(value - info.defaultNormalizedValue) < 0.01) << i;
    }
    EXPECT_EQ(bypasses, 1);
    const FUnknownPtr<IUnitInfo> units(host.component);
    ProgramListInfo list;
    ASSERT_EQ(units->getProgramListInfo(0, list), kResultTrue);
    ASSERT_EQ(list.id, 999);
    for (int32 i = 0; i < list.programCount; ++i) {
        String128 name{};
        ASSERT_EQ(units->getProgramName(999, i, name), kResultTrue);
        EXPECT_EQ(std::u16string(name).find(u':'), std::u16string::npos);
    }
    String128 name{};
    EXPECT_EQ(units->getProgramName(999, list.programCount, name), kResultFalse);
    EXPECT_EQ(units->getProgramName(998, 0, name), kResultFalse);
    EXPECT_EQ(host.controller->createView("other"), nullptr);
}

TEST_F(TestVst3Instance, ConstrainsLayoutsToWhatItCanPlay)
{
    SpeakerArrangement now = 0;
    EXPECT_TRUE(host.setLayout(0x3, 0x3));
    EXPECT_TRUE(host.setLayout(0x63F, 0x63F));
    EXPECT_FALSE(host.setLayout(0x80000, 0x3)); // as many outputs as inputs
    host.processor->getBusArrangement(kInput, 0, now);
    EXPECT_EQ(now, 0x3U);
    EXPECT_FALSE(host.setLayout(0xFFF, 0x3)); // more than there are inside
    host.processor->getBusArrangement(kOutput, 0, now);
    EXPECT_EQ(now, 0x63FU);
    EXPECT_FALSE(host.setLayout(0x3, 0x3, 0x3F));
    host.processor->getBusArrangement(kInput, 1, now);
    EXPECT_EQ(now, 0x3U);
    EXPECT_EQ(host.processor->setBusArrangements(nullptr, 0, nullptr, 0), kResultFalse);
}

TEST(TestVst3Sound, IsThatOfTheEngineToTheBit)
{
    for (const int32 size : {kSample32, kSample64}) {
        for (const bool isKeyed : {false, true}) {
            const CModuleFile module;
            CVstHost host(*module.factory());
            if (isKeyed)
                host.component->activateBus(kAudio, kInput, 1, true);
            host.start(48000.0, size);
            std::string error;
            const render::CProductModule entered(error);
            ASSERT_TRUE(entered.isEntered()) << error;
            qrb::CAudioWrapper engine;
            ASSERT_FALSE(engine.init());
            engine.setSampleRate(48000.0);
            qrb::CArray<qrb::CString> labels;
            labels.append("L");
            labels.append("R");
            engine.reportLayout(labels, isKeyed ? labels : qrb::CArray<qrb::CString>());
            const int keys = isKeyed ? 2 : 0;
            engine.setInputs({2, true, false}, {keys, true, false});
            engine.setOutputs({2, true, false});
            engine.start(); // the host prepares the instance, then activates it
            engine.stop();
            engine.start();
            EXPECT_EQ(host.processor->getLatencySamples(), static_cast<uint32>(engine.getLatencySamples()));
            double sum = 0.0;
            for (std::uint32_t block = 0; block < 12; ++block) {
                const CChannels in = noise(2 + static_cast<std::size_t>(keys), 100 + 97 * block, block);
                const std::vector<CPoint> points{{block + 1, 50, 0.01 * block}, {block + 1, 90, 0.7}};
                const CChannels out = host.play(in, 2, points);
                for (const CPoint& point : points)
                    engine.addEvent(
                        {.offset = point.offset, .index = static_cast<int>(point.id), .value = point.value});
                CChannels expected(2, std::vector<double>(in[0].size()));
                std::vector<const void*> inputs;
                for (const std::vector<double>& channel : in)
                    inputs.push_back(channel.data());
                void* outputs[] = {expected[0].data(), expected[1].data()};
                engine.setInputs({2, true, false}, {keys, true, false}, inputs.data() + 2);
                engine.processBlock(inputs.data(), outputs, static_cast<int>(in[0].size()));
                if (size == kSample32) {
                    for (std::vector<double>& channel : expected) {
                        for (double& sample : channel)
                            sample = static_cast<double>(static_cast<float>(sample));
                    }
                }
                ASSERT_EQ(out, expected) << "block " << block << ", size " << size << ", keys " << keys;
                sum += energy(out);
            }
            EXPECT_GT(sum, 0.0);
            engine.stop();
            host.stop();
        }
    }
}

TEST_F(TestVst3Instance, ManyPointsEndExactlyAndTheControllerDoesNotInterfere)
{
    host.start();
    std::vector<CPoint> points;
    for (int i = 0; i < 100; ++i)
        points.push_back({1, i * 5, i / 128.0});
    host.play(noise(2, 512), 2, points);
    CVstHost other(*module.factory());
    other.start();
    other.play(noise(2, 512), 2, {{1, 0, 99 / 128.0}});
    EXPECT_EQ(host.save(), other.save());
    // Late copies of the same automation reach the controller's side alone.
    const std::vector<char> before = host.save();
    host.controller->setParamNormalized(1, 0.25);
    EXPECT_EQ(host.controller->getParamNormalized(1), 0.25);
    EXPECT_EQ(host.save(), before);
    host.stop();
    host.controller->setParamNormalized(1, 0.5);
    EXPECT_NE(host.save(), before);
    // Points alone count as well, with audio or without.
    const std::vector<char> stopped = host.save();
    host.play({}, 0, {{1, 0, 0.75}});
    EXPECT_NE(host.save(), stopped);
}

TEST_F(TestVst3Instance, StatesComeBackAndBadOnesChangeNothing)
{
    host.controller->setParamNormalized(9, 0.3);
    host.controller->setParamNormalized(20, 0.9);
    const std::vector<char> state = host.save();
    CVstHost other(*module.factory());
    ASSERT_TRUE(other.restore(state));
    EXPECT_EQ(other.save(), state);
    EXPECT_NEAR(other.controller->getParamNormalized(9), 0.3, 1e-9);
    EXPECT_EQ(other.handler.edits, 0);
    EXPECT_EQ(other.handler.restarts, std::vector<int32>{kParamValuesChanged});
    std::vector<char> bad = state;
    bad[bad.size() / 2] = static_cast<char>(bad[bad.size() / 2] ^ 0x55);
    EXPECT_FALSE(other.restore(bad));
    EXPECT_FALSE(other.restore({state.begin(), state.begin() + 20}));
    EXPECT_FALSE(other.restore({}));
    EXPECT_EQ(other.save(), state);
}

TEST_F(TestVst3Instance, TellsWhatProgramsChangeOnceAndWithoutGestures)
{
    host.start();
    host.handler.restarts.clear();
    host.play(noise(2, 64), 2, {{kProgramId, 0, 1.0}}); // from here the main thread has it
    host.component->setActive(false);
    const FUnknownPtr<IUnitInfo> units(host.component);
    ProgramListInfo list;
    ASSERT_EQ(units->getProgramListInfo(0, list), kResultTrue);
    EXPECT_EQ(host.controller->getParamNormalized(kProgramId), list.programCount > 1 ? 1.0 : 0.0);
    EXPECT_EQ(host.handler.edits, 0);
    for (const int32 flags : host.handler.restarts)
        EXPECT_EQ(flags & ~(kParamValuesChanged | kLatencyChanged), 0);
    EXPECT_LE(host.handler.restarts.size(), 1U);
    EXPECT_FALSE(host.text(kProgramId, 1.0).empty());
}

TEST_F(TestVst3Instance, SurvivesBlocksThatAreNotAsDeclared)
{
    EXPECT_EQ(energy(host.play(noise(2, 64), 2)), 0.0); // not started: silence
    host.component->activateBus(kAudio, kInput, 1, true);
    host.start();
    host.play(noise(2, 65536), 2);                     // more than announced, keys missing
    host.play(noise(3, 64), 2);                        // keys narrower
    const CChannels wide = host.play(noise(6, 64), 6); // main wider
    EXPECT_GT(energy({wide[0], wide[1]}), 0.0);
    EXPECT_EQ(energy({wide[2], wide[3], wide[4], wide[5]}), 0.0);
    host.play(noise(1, 64), 1);
    host.play({}, 0);
    host.stop();
    EXPECT_TRUE(host.setLayout(0x63F, 0x63F));
    host.start(192000.0, kSample32);
    EXPECT_EQ(host.play(noise(8, 2000), 8).size(), 8U);
}

} // namespace
