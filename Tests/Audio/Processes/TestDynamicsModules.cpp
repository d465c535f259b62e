// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/ClipLine.h"
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

TEST(CModAlphaEnv, HoldsUntilItsSecondPortLetsItRise)
{
    CGraphRig rig(kEnvParams + paramXml("opening", "0") + envXml() +
                      probeXml("second", "^opening", "is-outoforder='true'") + linkXml("*", "modAlphaEnv") +
                      linkXml("*", "second") + linkXml("second", "modAlphaEnv/1") + linkXml("modAlphaEnv", "*"),
                  "");
    double gain = 0.1;
    rig.input = [&gain](int, int) { return gain; };
    EXPECT_NEAR(rig.run(5000).at(0).back(), 0.1, 1e-3);
    gain = 0.9;
    EXPECT_NEAR(rig.run(5000).at(0).back(), 0.1, 1e-3) << "port 1 is at 0";
    rig.set("opening", 1.0);
    EXPECT_NEAR(rig.run(20000).at(0).back(), 0.9, 1e-3);
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
    return paramXml("gain2", "4") + paramXml("morph", "0.8") + paramXml("bias", "0.3") + paramXml("drive", "3") +
           paramXml("feedback", "0") + paramXml("monitor", "0") +
           moduleXml("modXOTube",
                     {"", "", "", "", "bias", "", "gain2", "", "feedback", "", "", "morph", "", "", "", "drive", "bias",
                      "monitor"},
                     attrs);
}

TEST(CModXOTube, IsSilentOnSilenceBoundedAndMonitorsItsMorph)
{
    for (const double feedback : {0.0, 1.0}) {
        CGraphRig rig(tubeXml("is-smooth-update='true' xfade-length='0.001'"));
        rig.set("feedback", feedback);
        rig.input = [](int, int) { return 0.0; };
        const std::vector<double> silence = rig.run(1000, 17).at(0);
        for (const double sample : silence)
            ASSERT_NEAR(sample, 0.0, 1e-13);
        rig.input = [](int, int sample) { return 30.0 * std::sin(sample * 0.03); };
        double peak = 0.0;
        const std::vector<double> loud = rig.run(2000).at(0);
        for (const double sample : loud)
            peak = std::max(peak, std::abs(sample));
        EXPECT_GT(peak, 0.3);
        EXPECT_LT(peak, 5.0);
        rig.set("monitor", 1.0);
        (void)rig.run(200);
        const std::vector<double> morph = rig.run(2000).at(0);
        const auto [low, high] = std::minmax_element(morph.begin(), morph.end());
        EXPECT_GE(*low, 0.0);
        EXPECT_LE(*high, 1.0);
        EXPECT_GT(*high - *low, 0.1);
    }
}

TEST(DynamicsModules, OneModuleForAllLinesEqualsOneALineBitForBit)
{
    for (const std::string& xml : {kEnvParams + envXml("WHOLE"), tubeXml("WHOLE")}) {
        std::map<int, std::vector<double>> results[2];
        for (const bool isWhole : {false, true}) {
            std::string body = xml;
            body.replace(body.find("WHOLE"), 5, isWhole ? "is-terminal-whole='true'" : "");
            CGraphRig rig(body);
            rig.setLines({{0, 0}, {1, 0}, {2, 0}});
            rig.input = wave;
            results[isWhole] = rig.run(1000, isWhole ? 41 : 512);
        }
        EXPECT_EQ(results[0], results[1]) << xml;
        EXPECT_NE(results[0].at(0), results[0].at(1));
    }
}

} // namespace
} // namespace qrb
