// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/ClipLine.h"
#include "Audio/Processes/EnvelopeFollower.h"
#include "Audio/Processes/Tube.h"
#include "Tests/Audio/CGraphRig.h"
#include "Tests/Audio/Processes/ModuleXml.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace qrb {
namespace {

double decibels(double factor)
{
    return 20.0 * std::log10(factor);
}

/// A falling and rising level, different on each line.
double wave(int line, int sample)
{
    return 0.505 + 0.495 * std::sin(sample * 0.002 * (line + 1) + line);
}

TEST(CModAlphaComp, ReadsItsSlotsAndServesLevelsOfZero)
{
    CGraphRig rig(paramXml("threshold", "-20") + paramXml("ratio", "0.5") + paramXml("knee", "0") +
                  paramXml("inverse", "0") + paramXml("downward", "0") + paramXml("shift", "6") +
                  moduleXml("modAlphaComp", {"threshold", "ratio", "knee", "inverse", "downward", "shift"}));
    double level = std::pow(10.0, -4.0 / 20.0);
    rig.input = [&level](int, int) { return level; };
    EXPECT_NEAR(decibels(rig.runOne()), -5.0, 1e-12) << "10 dB above the shifted threshold at 2:1";
    rig.set("inverse", 1.0);
    EXPECT_NEAR(decibels(rig.runOne()), 5.0, 1e-12);
    rig.set("downward", 1.0);
    EXPECT_EQ(rig.runOne(), 1.0);
    level = std::pow(10.0, -44.0 / 20.0);
    EXPECT_NEAR(decibels(rig.runOne()), 15.0, 1e-12) << "30 dB below";
    rig.set("inverse", 0.0);
    rig.set("ratio", 0.0);
    EXPECT_NEAR(decibels(rig.runOne()), -30.0, 1e-12);
    level = 0.0;
    EXPECT_EQ(rig.runOne(), 0.0) << "silence closes a gate";
}

const std::string kEnvParams = paramXml("attack", "0.002") + paramXml("release", "0.05") + paramXml("amode", "2") +
                               paramXml("rmode", "0") + paramXml("inverse", "1") + paramXml("min", "0.2") +
                               paramXml("punch", "0.5") + paramXml("feedback", "0");

std::string envXml(const std::string& attrs = "")
{
    return moduleXml("modAlphaEnv", {"attack", "release", "amode", "rmode", "inverse", "min", "punch", "feedback"},
                     attrs);
}

TEST(CModAlphaEnv, StartsAtRestAndKeepsItsStatesWhenParametersChange)
{
    for (const bool isFeedback : {false, true})
        for (const bool isInverse : {false, true}) {
            CGraphRig rig(kEnvParams + envXml());
            rig.set("feedback", isFeedback);
            rig.set("inverse", isInverse);
            rig.input = [](int, int) { return 0.5; };
            const double start = isFeedback || isInverse ? 1.0 : 0.0;
            EXPECT_NEAR(rig.runOne(), start, 0.1) << isFeedback << isInverse;
            const double before = rig.run(500).at(0).back();
            EXPECT_GT(std::abs(before - start), 0.2);
            rig.set("attack", 0.5);
            rig.set("rmode", 1.0);
            EXPECT_NEAR(rig.runOne(), before, 0.01) << "no jump";
            rig.reset();
            EXPECT_NEAR(rig.runOne(), start, 0.1);
        }
}

TEST(CModAlphaEnv, ReadsEachSlotWhereItBelongs)
{
    CGraphRig rig(kEnvParams + envXml());
    const CFollowerSettings settings{0.004, 0.0625, EFollowerMode::fast, EFollowerMode::slow, false, true, 0.375, 0.25};
    rig.set("attack", settings.attack);
    rig.set("release", settings.release);
    rig.set("amode", 0.4); // modes go to the nearest
    rig.set("rmode", 1.5);
    rig.set("inverse", 0.49);
    rig.set("min", settings.minRate);
    rig.set("punch", settings.punch);
    rig.set("feedback", 0.5);
    rig.input = wave;
    std::vector<double> want(3000);
    for (int i = 0; i < 3000; ++i)
        want[static_cast<std::size_t>(i)] = wave(0, i);
    CFollowerState state = restOfFollower(settings);
    const CFollower follower = makeFollower(settings, 44100.0);
    const CFollowerLine line{&follower, &state, want.data(), nullptr, want.data()};
    runFollowers(followerLoop(settings, false), {&line, 1}, want.size());
    EXPECT_EQ(rig.run(3000).at(0), want);
}

TEST(CModAlphaEnv, HoldsEachLineUntilItsOwnSecondPortLetsItRise)
{
    for (const char* const attrs : {"", "is-terminal-whole='true'"}) {
        CGraphRig rig(kEnvParams + paramXml("opening", "0") + envXml(attrs) +
                          probeXml("second", "^opening", "is-outoforder='true'") + linkXml("*", "modAlphaEnv") +
                          linkXml("*", "second") + linkXml("second", "modAlphaEnv/1") + linkXml("modAlphaEnv", "*"),
                      "");
        rig.setLines({{0, 0}, {1, 0}});
        double gains[] = {0.1, 0.1};
        rig.input = [&gains](int line, int) { return gains[line]; };
        (void)rig.run(5000);
        gains[0] = 0.9;
        gains[1] = 0.5;
        EXPECT_NEAR(rig.run(5000).at(0).back(), 0.1, 1e-3) << "port 1 is at 0";
        rig.set("opening", 0.15);
        const auto held = rig.run(20000);
        EXPECT_GT(held.at(0).back(), 0.135) << "rises up to port 1";
        EXPECT_LT(held.at(0).back(), 0.2);
        EXPECT_NEAR(held.at(1).back(), 0.1, 1e-3) << "port 1 is still below";
        rig.set("opening", 1.0);
        EXPECT_NEAR(rig.run(20000).at(1).back(), 0.5, 1e-3);
    }
}

TEST(CModClip, NeverExceedsItsLimit)
{
    for (const auto& [attr, gain, limit] : {std::tuple{"clip-level='0.98'", 1.0, 0.98},
                                            {"clip-level='0.98'", 0.5, 0.49},
                                            {"clip-level='0'", 1.0, 0.01},
                                            {"", 0.0, 0.0}}) {
        CGraphRig rig(paramXml("gain", "1") + moduleXml("modClip", {"gain"}, attr));
        rig.set("gain", gain);
        rig.input = [](int, int sample) { return (sample % 7 - 3) * 0.3 + (sample % 2) * 1e-3; };
        const std::vector<double> out = rig.run(51, 17).at(0);
        for (int i = 0; i < 51; ++i)
            ASSERT_EQ(out[static_cast<std::size_t>(i)], std::clamp(rig.input(0, i), -limit, limit)) << attr << i;
    }
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    double odd[] = {kInfinity, -kInfinity, std::nan(""), -std::nan(""), 1e300};
    clipLine(odd, 0.7, odd);
    for (const double sample : odd)
        EXPECT_EQ(std::abs(sample), 0.7);
}

std::string tubeXml(const std::string& attrs = "")
{
    std::string params;
    for (int slot = 0; slot < 24; ++slot)
        params += paramXml("p" + std::to_string(slot), "1");
    return params + moduleXml("modXOTube",
                              {"p0",  "p1",  "p2",  "p3",  "p4",  "p5",  "p6",  "p7",  "p8",  "p9",  "p10", "p11",
                               "p12", "p13", "p14", "p15", "p16", "p17", "p18", "p19", "p20", "p21", "p22", "p23"},
                              attrs);
}

void setSlots(CGraphRig& rig, std::initializer_list<double> values)
{
    int slot = 0;
    for (const double value : values)
        rig.set("p" + std::to_string(slot++), value);
}

TEST(CModXOTube, ReadsEachSlotWhereItBelongs)
{
    for (const double drive : {0.5, 64.0})
        for (const bool isFeedback : {false, true})
            for (const bool isMonitor : {false, true}) {
                CTubeSettings settings;
                settings.curves[0] = {2.5, 0.25, 3.0, 1.0};
                settings.curves[1] = {1.75, -0.5, 5.0, 1.5};
                settings.blockerFrequency = 12.0;
                settings.isBlockedByFeedback = isFeedback;
                settings.hasLowPass = true;
                settings.lowPassFrequency = 900.0;
                settings.morphGain = 1.25;
                settings.morphBias = 0.125;
                settings.morphFrequency = 700.0;
                settings.morphBandwidth = 1.125;
                settings.drive = drive;
                settings.bias = 0.0625;
                settings.hasBalance = true;
                settings.balance = 2.0;
                settings.correctionBelow = 0.375;
                settings.correctionAbove = -0.25;
                settings.correctionHigh = 0.75;
                settings.outputGain = 0.875;
                CGraphRig rig(tubeXml());
                setSlots(rig, {2.5, 0.25,  3.0,   1.75,  -0.5,  5.0,   1.5,   12.0,   isFeedback ? 1.0 : 0.0,
                               1.0, 900.0, 1.25,  0.125, 700.0, 1.125, drive, 0.0625, isMonitor ? 1.0 : 0.0,
                               2.0, 1.0,   0.375, -0.25, 0.75,  0.875});
                rig.input = wave;
                std::vector<double> want(1500);
                for (int i = 0; i < 1500; ++i)
                    want[static_cast<std::size_t>(i)] = wave(0, i);
                const CTube tube = makeTube(settings, 44100.0);
                CTubeState state = restOfTube(tube, isFeedback);
                const CTubeLine line{&tube, &state, want.data(), want.data()};
                runTubes(tubeLoop(isFeedback, isMonitor), {&line, 1}, want.size());
                EXPECT_EQ(rig.run(1500).at(0), want) << drive << isFeedback << isMonitor;
            }
}

TEST(CModXOTube, AnotherWorkingPointIsFadedToWithoutAThump)
{
    for (const double feedback : {0.0, 1.0}) {
        CGraphRig rig(tubeXml("is-smooth-update='true' xfade-length='0.001'"));
        setSlots(rig, {2, 0.3, 4, 3, 0.7, 8, 4, 5, feedback, 0, 20000, 0.8, 0, 3000, 2, 3, 0, 0});
        rig.input = [](int, int) { return 0.0; };
        for (const double bias : {0.0, 0.5}) {
            rig.set("p16", bias);
            const std::vector<double> silence = rig.run(500, 17).at(0);
            for (const double sample : silence)
                ASSERT_NEAR(sample, 0.0, 1e-13);
        }
    }
}

TEST(DynamicsModules, OneModuleForAllLinesInAnyBlocksEqualsOneALineBitForBit)
{
    for (const bool isTube : {false, true})
        for (const double feedback : {0.0, 1.0}) {
            const auto run = [&](const std::string& attrs, int block) {
                CGraphRig rig(isTube ? tubeXml(attrs) : kEnvParams + envXml(attrs));
                if (isTube)
                    setSlots(rig, {1, 0.3, 4, 1, 0, 4, 2, 5, feedback, 0, 20000, 0.8, 0, 3000, 2, 3, 0, 0});
                else
                    rig.set("feedback", feedback);
                rig.setLines({{0, 0}, {1, 0}, {2, 0}});
                rig.input = wave;
                return rig.run(1000, block);
            };
            const auto want = run("", 512);
            EXPECT_NE(want.at(0), want.at(1));
            for (const int block : {1, 2, 41})
                EXPECT_EQ(run("is-terminal-whole='true'", block), want) << isTube << feedback << block;
        }
}

} // namespace
} // namespace qrb
