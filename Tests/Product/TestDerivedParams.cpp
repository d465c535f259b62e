// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamCollector.h"
#include "Tests/Product/CPresetRig.h"
#include "Tests/Product/CProductRig.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <random>

namespace {

const std::string kGroup = "modThumpcraft.";

CChannels makeSine(double amplitude, std::size_t frames)
{
    std::vector<double> samples(frames);
    for (std::size_t n = 0; n < frames; ++n)
        samples[n] = amplitude * std::sin(2.0 * std::numbers::pi * 1000.0 / 44100.0 * static_cast<double>(n));
    return {samples, samples};
}

/// What becomes of the level of a long sine at its end, in decibels.
double gainOf(CProductRig& rig, double amplitude)
{
    constexpr std::size_t kFrom = 66150;
    const CChannels in = makeSine(amplitude, 88200);
    const CChannels out = rig.run(in, 512);
    double before = 0.0;
    double after = 0.0;
    for (std::size_t n = kFrom; n < 88200; ++n) {
        before += in[0][n] * in[0][n];
        after += out[0][n] * out[0][n];
    }
    return 10.0 * std::log10(after / before);
}

double valueOf(CProductRig& rig, const std::string& name)
{
    return rig.instance().paramCollector().getParam(qrb::CString::fromUtf8("plugin.modMain." + name)).value();
}

TEST(TestDerivedParams, TheMakeUpGainGrowsAsTheThresholdFalls)
{
    double previous = 0.0;
    for (const char* const threshold : {"-6", "-18", "-36"}) {
        CProductRig rig({});
        rig.set(kGroup + "comp-enable=1").set(kGroup + "comp-attack=2").set(kGroup + "comp-threshold=" + threshold);
        const double gain = gainOf(rig, 0.0005); // far below the threshold: nothing but the make-up gain is heard
        EXPECT_NEAR(gain, 20.0 * std::log10(valueOf(rig, kGroup + "compgain")), 0.001) << threshold;
        EXPECT_GT(gain, previous + 0.5) << threshold;
        previous = gain;
    }
}

TEST(TestDerivedParams, ARatioBelowOneToOneRaisesWhatIsAboveTheThreshold)
{
    CProductRig rig({});
    rig.set(kGroup + "comp-enable=1").set(kGroup + "comp-threshold=-39").set(kGroup + "comp-ratio=1:5");
    rig.set(kGroup + "comp-attack=60"); // no make-up gain
    // 0.05 is -29.03 dB RMS, 9.97 dB over the threshold: four fifths of that are added.
    EXPECT_NEAR(gainOf(rig, 0.05), 7.98, 1.0);
}

TEST(TestDerivedParams, SplitsMayBeSetInEitherOrder)
{
    const CChannels in = makeNoise(2, 6000);
    const auto play = [&in](const std::string& first, const std::string& second) {
        CProductRig rig({44100.0, 2, 2, 0, 3});
        rig.set(kGroup + "xo-freq:0:0=" + first).set(kGroup + "xo-freq:0:1=" + second);
        return rig.set(kGroup + "bandgain:0:0=-12").set(kGroup + "bandgain:0:2=6").run(in, 512);
    };
    EXPECT_EQ(play("3000", "200"), play("200", "3000"));
    EXPECT_NE(play("3000", "200"), play("200", "2000"));
}

TEST(TestDerivedParams, TheCodersWorkAsSoonAsTwoChannelsArePaired)
{
    // Each channel has a gain of its own: on mid and side these two make another signal than on left and right.
    const CChannels in = makeNoise(2, 12000);
    CProductRig rig({});
    rig.set("io-params.grouping:0:1=1").set("io-params.ms-pairs:0:0=MS1").set(kGroup + "outgain:1=-6");
    rig.at(6000, "io-params.ms-pairs:0:1=MS1");
    const CChannels out = rig.run(in, 512);
    const std::size_t latency = static_cast<std::size_t>(rig.latency());
    const double low = std::pow(10.0, -6.0 / 20.0);
    for (std::size_t i = latency; i < 6000; ++i)
        ASSERT_NEAR(out[1][i], in[1][i - latency] * low, 1e-10) << i;
    for (std::size_t i = 10000; i < 12000; ++i) {
        const double left = in[0][i - latency];
        const double right = in[1][i - latency];
        ASSERT_NEAR(out[1][i], 0.5 * (left + right) - 0.5 * (left - right) * low, 1e-10) << i;
    }
    EXPECT_EQ(valueOf(rig, "mid-side-bypass"), 0.0);
    EXPECT_EQ(valueOf(rig, "oversampling-bypass"), 1.0);
    EXPECT_EQ(valueOf(rig, "group-solo-bypass"), 1.0);
}

TEST(TestDerivedParams, FollowPresetsProgramsStatesResetsAndTheHistory)
{
    const std::vector<std::string> sources = {
        "io-params.ms-pairs",   "io-params.channel-group-solo", "oversampling",        kGroup + "xo-freq",
        kGroup + "xo-count",    kGroup + "comp-threshold",      kGroup + "comp-ratio", kGroup + "comp-attack",
        kGroup + "comp-release"};
    const std::vector<std::string> results = {
        "mid-side-bypass",         "oversampling-bypass",    "group-solo-bypass",
        kGroup + "xo-freq-sorted", kGroup + "xo-band-count", kGroup + "comp-ratio0",
        kGroup + "comp-inverse0",  kGroup + "comp-inverse1", kGroup + "compgain"};
    std::mt19937 random(21);
    CPresetRig rig;
    CPresetRig hand; // gets the same sources, one after the other
    qrb::CAudioParamRegistry& master = rig.master();
    std::vector<std::uint8_t> saved = rig.saveState();
    qrb::CAudioPreset noted = master.capture(-1);
    const auto below = [&random](std::uint32_t end) { return static_cast<int>(random() % end); };
    for (int step = 0; step < 400 && !HasFailure(); ++step) {
        const int kind = below(9);
        if (kind == 0)
            rig.randomize(random);
        else if (kind == 1)
            EXPECT_FALSE(master.setCurrentProgram(below(CPresetRig::kPrograms), nullptr));
        else if (kind == 2)
            EXPECT_FALSE(master.activatePreset(noted, nullptr, below(4) - 1));
        else if (kind == 3)
            noted = master.capture(-1);
        else if (kind == 4)
            EXPECT_EQ(rig.loadState(saved), "");
        else if (kind == 5)
            saved = rig.saveState();
        else if (kind == 6)
            master.masterReset();
        else if (kind == 7)
            rig.undo().setPosition(below(4));
        else
            rig.param(sources[random() % sources.size()]).resetValues(-1, -1);
        {
            const qrb::CAudioParamGuard guard(rig.params());
            for (const std::string& path : sources) {
                const qrb::CAudioParamStorage& values = rig.param(path).editStorage(guard);
                for (int g = 0; g < (values.format().isSingleGroup ? 1 : 8); ++g)
                    hand.param(path).update(values.wholeGroup(g, g));
            }
        }
        const CPlainState seen = rig.state(results);
        EXPECT_EQ(seen, hand.state(results)) << step << " " << kind;
        rig.params().flushQueue();
        for (const std::string& path : results)
            EXPECT_EQ(trimmed(CPresetRig::groupsOf(rig.param(path).audioStorage())), seen.at(path)) << step << path;
    }
}

} // namespace
