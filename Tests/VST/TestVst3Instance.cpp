// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioWrapper.h"
#include "Audio/HostParams/CAudioExtParam.h"
#include "Tests/VST/VstTestSupport.h"
#include "Tools/Render/CProductModule.h"

#include <cmath>
#include <gtest/gtest.h>
#include <pluginterfaces/vst/ivstunits.h>

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace {

constexpr ParamID kProgramId = 72;

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
                const CChannels in = makeNoise(2 + static_cast<std::size_t>(keys), 100 + 97 * block, block);
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
                sum += energyOf(out);
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
    host.play(makeNoise(2, 512), 2, points);
    CVstHost other(*module.factory());
    other.start();
    other.play(makeNoise(2, 512), 2, {{1, 0, 99 / 128.0}});
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
    host.play(makeNoise(2, 64), 2, {{kProgramId, 0, 1.0}}); // from here the main thread has it
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
    EXPECT_EQ(energyOf(host.play(makeNoise(2, 64), 2)), 0.0); // not started: silence
    host.component->activateBus(kAudio, kInput, 1, true);
    host.start();
    host.play(makeNoise(2, 65536), 2);                     // more than announced, keys missing
    host.play(makeNoise(3, 64), 2);                        // keys narrower
    const CChannels wide = host.play(makeNoise(6, 64), 6); // main wider
    EXPECT_GT(energyOf({wide[0], wide[1]}), 0.0);
    EXPECT_EQ(energyOf({wide[2], wide[3], wide[4], wide[5]}), 0.0);
    host.play(makeNoise(1, 64), 1);
    host.play({}, 0);
    host.stop();
    EXPECT_TRUE(host.setLayout(0x63F, 0x63F));
    host.start(192000.0, kSample32);
    EXPECT_EQ(host.play(makeNoise(8, 2000), 8).size(), 8U);
}

} // namespace
