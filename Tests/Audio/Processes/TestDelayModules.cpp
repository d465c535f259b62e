// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/AudioCreators.h"
#include "Tests/Audio/CGraphRig.h"
#include "Tests/Audio/Processes/ModuleXml.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

namespace qrb {
namespace {

std::string delayXml(const std::string& attrs)
{
    return paramXml("time", "0") + paramXml("samples", "0") + paramXml("trans-time", "0.01") +
           paramXml("block-size", "1") + paramXml("time-mode", "0") +
           moduleXml("modDelay", {"time", "samples", "trans-time", "block-size", "time-mode"}, attrs);
}

/// Samples by which the line comes late, once transitions are over.
int delayOf(CGraphRig& rig, int settle = 1000)
{
    int now = 0;
    rig.input = [&now](int, int sample) {
        now = sample;
        return sample;
    };
    const double last = rig.run(settle, 512).at(0).back();
    rig.input = [](int, int sample) { return sample; };
    return now - static_cast<int>(last);
}

TEST(CModDelay, MovesTheLineWithinItsDeclaredLatency)
{
    const std::string latency = "latency='0.005' is-latency-seconds='true'"; // 221 samples at 44100 Hz
    std::optional<CGraphRig> rig(std::in_place, delayXml(latency));
    EXPECT_EQ(delayOf(*rig), 221);
    rig->set("time", 0.002);
    EXPECT_EQ(delayOf(*rig), 221 - 88);
    rig->set("time", 0.1);
    EXPECT_EQ(delayOf(*rig), 0) << "no earlier than the input";
    EXPECT_EQ(rig->latency(), 221);

    rig.reset();
    rig.emplace(delayXml(latency + " is-latency-positive='true'"));
    rig->set("time", 0.002);
    rig->set("samples", 7.0);
    EXPECT_EQ(delayOf(*rig), 221 + 95);
    EXPECT_EQ(rig->latency(), 221);

    rig.reset();
    rig.emplace(delayXml("latency='30'"));
    EXPECT_EQ(delayOf(*rig), 30) << "the latency in samples";
}

TEST(CModDelay, TakesDistancesAndAtMostTwelveSeconds)
{
    CGraphRig rig(delayXml(""));
    rig.set("time", 0.0034029);
    rig.set("time-mode", 1.0);
    EXPECT_EQ(delayOf(rig), 441) << "metres";
    rig.set("time", 0.01116437);
    rig.set("time-mode", 2.0);
    EXPECT_EQ(delayOf(rig), 441) << "feet";
    rig.setLines({{0, 0}}, 1000.0);
    rig.set("time-mode", 0.0);
    rig.set("time", 20.0);
    EXPECT_EQ(delayOf(rig, 13000), 12000);
    EXPECT_EQ(rig.latency(), 0);
}

TEST(CModDelay, CrossesOverByARaisedCosineAndTakesItsDelayAtOnceAfterAReset)
{
    CGraphRig rig(delayXml(""));
    rig.set("time", 0.01);
    EXPECT_EQ(delayOf(rig), 441);
    rig.set("time", 0.0);
    const std::vector<double> out = rig.run(600, 37).at(0);
    for (int i = 0; i < 600; ++i) {
        const double oldWeight = i < 441 ? 0.5 + 0.5 * std::cos(std::numbers::pi * i / 441.0) : 0.0;
        ASSERT_NEAR(out[static_cast<std::size_t>(i)], 1000 + i - 441.0 * oldWeight, 1e-7) << i;
    }
    rig.set("time", 0.001);
    rig.reset();
    EXPECT_EQ(delayOf(rig, 50), 44);
    EXPECT_EQ(rig.run(1).at(0).front(), 1600 + 50 - 44) << "no transition behind a reset";
}

constexpr const char* kTable = "latencies='44100=100;48000=-1;88200=200'";

TEST(CModLatencyUniformer, BringsTheLatencyToThatOfTheRate)
{
    CGraphRig rig(delayXml("latency='30'") + moduleXml("modLatencyUniformer", {}, kTable));
    const auto expect = [&rig](double rate, int delay, const char* log) {
        const std::size_t before = rig.logLines().size();
        rig.setLines({{0, 0}}, rate);
        EXPECT_EQ(delayOf(rig, 3000), delay) << rate;
        EXPECT_EQ(rig.latency(), delay) << rate;
        const std::string last = rig.logLines().size() == before ? "" : rig.logLines().back();
        EXPECT_EQ(last, log);
    };
    expect(44100.0, 100, "");
    expect(32000.0, 100, "");
    expect(50000.0, 200, "");
    expect(48000.0, 30, "Unsupported sample rate 48000.000000 in LatencyUniformer");
    expect(96000.0, 30, "Unsupported sample rate 96000.000000 in LatencyUniformer");
}

TEST(CModLatencyUniformer, LeavesALatencyThatIsTooHighAlone)
{
    CGraphRig rig(delayXml("latency='150'") + moduleXml("modLatencyUniformer", {}, kTable));
    EXPECT_EQ(delayOf(rig), 150);
    EXPECT_EQ(rig.latency(), 150);
    ASSERT_FALSE(rig.logLines().empty());
    EXPECT_EQ(rig.logLines().back(), "Too high latency 150 at sample rate 44100.000000 in LatencyUniformer");
}

TEST(CModLatencyUniformer, RefusesATableThatCannotBeRead)
{
    for (const char* table : {"44100", "44100=x", "44100=1=2", "=5"}) {
        CTestModule module("<root/>", audioCreators());
        std::string error;
        const std::string xml =
            std::string("<root><audio:modLatencyUniformer name='u' latencies='") + table + "'/></root>";
        EXPECT_EQ(module.tryLoadRoot(xml, error), nullptr);
        EXPECT_NE(error.find(table), std::string::npos) << error;
    }
}

const std::string kSmooth = "is-smooth-update='true' xfade-length='0.015'";

/// Everything that has a memory, with settings that change while it runs, and again before they have crossed over.
std::map<int, std::vector<double>> renderChain(int cut)
{
    CGraphRig rig(paramXml("routing", "2,1,3") + paramXml("grouping", "0,0,1") + paramXml("pairs", "1,1,0") +
                  paramXml("encode", "0") + paramXml("decode", "1") + paramXml("bypass", "0") +
                  paramXml("gain", "0.5") + paramXml("linking", "0.3") + paramXml("mute", "0;0") +
                  paramXml("other", "0") + paramXml("port", "0") + moduleXml("modRouter", {"*routing", "*grouping"}) +
                  moduleXml("modMSCoder", {"*pairs", "encode", "bypass"}, "", "encoder") +
                  moduleXml("modDenormNoise", {}) + delayXml("") + moduleXml("modRMS", {}, "is-smooth-update='true'") +
                  moduleXml("modLeveler", {"", "", "linking"}, "is-terminal-whole='true' is-smooth-update='true'") +
                  moduleXml("modGain", {"gain"}, kSmooth) + moduleXml("modBypass", {"port"}, kSmooth) +
                  linkXml("modGain", "modBypass/1") + moduleXml("modMute", {"mute"}, kSmooth) +
                  moduleXml("modMute", {"other"}, kSmooth, "unmuted") +
                  moduleXml("modMSCoder", {"*pairs", "decode", "bypass"}, "", "decoder") +
                  moduleXml("modLatencyUniformer", {}, kTable));
    rig.setLines({{0, 0}, {1, 0}, {2, 1}});
    rig.input = [](int line, int sample) { return std::sin(0.01 * sample * (line + 1)); };
    std::map<int, std::vector<double>> out;
    const auto run = [&](int count) {
        for (const auto& [channel, samples] : rig.run(count, cut))
            out[channel].insert(out[channel].end(), samples.begin(), samples.end());
    };
    run(1000);
    rig.set("gain", 2.0);
    rig.set("time", 0.003);
    rig.set("mute", 1.0, 1);
    rig.set("port", 1.0); // the same signal as on port 0
    run(300);
    rig.set("mute", 0.9, 1); // starts a fade, and with it a noise, when the first has ended
    rig.set("other", 0.2);
    rig.set("port", 0.0);
    rig.set("time", 0.001);
    rig.set("linking", 1.0);
    rig.set("gain", -1.0);
    run(1700);
    return out;
}

TEST(Modules, GiveTheSameBitsHoweverBlocksAreCut)
{
    const auto want = renderChain(512);
    EXPECT_EQ(want.size(), 3u);
    for (const int cut : {1, 17, 64, 331, 1000})
        EXPECT_EQ(renderChain(cut), want) << cut;
}

} // namespace
} // namespace qrb
