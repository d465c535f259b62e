// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/OnePole.h"
#include "Tests/Audio/CGraphRig.h"
#include "Tests/Audio/Processes/ModuleXml.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>

namespace qrb {
namespace {

/// The chain through a module whose port 1 gets three times its port 0.
std::string withTripleAtPort1(const std::string& module, const std::string& name)
{
    return paramXml("three", "3") + module + probeXml("triple", "^three", "is-outoforder='true'") + linkXml("*", name) +
           linkXml("*", "triple") + linkXml("triple", name + "/1") + linkXml(name, "*");
}

TEST(CModRMS, SmoothsTheSquareOnceOrTwice)
{
    for (const int type : {0, 1}) {
        CGraphRig rig(paramXml("freq", "50") + paramXml("type", std::to_string(type)) +
                      moduleXml("modRMS", {"freq", "type"}));
        rig.input = [](int, int) { return -2.0; };
        const std::vector<double> out = rig.run(300, 17).at(0);
        const double c = onePoleCoefficient(50.0, 44100.0);
        for (std::size_t i = 0; i < out.size(); ++i) {
            const auto n = static_cast<double>(i + 1);
            const double rest = std::pow(1.0 - c, n) * (type == 0 ? 1.0 : 1.0 + n * c);
            ASSERT_NEAR(out[i], 2.0 * std::sqrt(1.0 - rest), 1e-12) << type << " " << i;
        }
    }
}

TEST(CModLeveler, MovesLinesTowardsTheirCommonLevel)
{
    CGraphRig rig(paramXml("mode", "0") + paramXml("mix", "0") + paramXml("linking", "0") +
                  moduleXml("modLeveler", {"mode", "mix", "linking"}, "is-terminal-whole='true'"));
    rig.setLines({{0, 0}, {1, 0}});
    rig.input = [](int line, int) { return line == 0 ? 0.2 : 0.4; };
    const struct {
        double mode, mix, linking, first, second;
    } kRows[] = {
        {0, 0, 0, 0.2, 0.4}, {0, 0, 0.5, 0.3, 0.4},   {0, 0, 1, 0.4, 0.4},     {1, 0, 0.5, 0.2, 0.3},
        {0, 1, 1, 0.3, 0.3}, {0, 0.5, 1, 0.35, 0.35}, {1, 0.5, 1, 0.25, 0.25}, {1, 1, 0.25, 0.225, 0.375},
    };
    for (const auto& row : kRows) {
        rig.set("mode", row.mode);
        rig.set("mix", row.mix);
        rig.set("linking", row.linking);
        const auto out = rig.run(5);
        EXPECT_NEAR(out.at(0).back(), row.first, 1e-15) << row.mode << row.mix << row.linking;
        EXPECT_NEAR(out.at(1).back(), row.second, 1e-15) << row.mode << row.mix << row.linking;
    }
    rig.setLines({{0, 0}});
    EXPECT_DOUBLE_EQ(rig.runOne(), 0.2) << "one line is its own common level";
}

TEST(CModGain, ScalesInvertsAndMutes)
{
    CGraphRig rig(paramXml("gain", "1") + paramXml("mute", "0") + paramXml("invert", "0") +
                  moduleXml("modGain", {"gain", "mute", "invert"}));
    EXPECT_EQ(rig.runOne(), 1.0);
    rig.set("invert", 1.0);
    EXPECT_EQ(rig.runOne(), -1.0) << "a factor of -1 is not neutral";
    rig.set("gain", 0.25);
    EXPECT_EQ(rig.runOne(), -0.25);
    rig.set("mute", 0.5);
    EXPECT_TRUE(isSoftSilence(rig.runOne()));
}

TEST(CModMix, CrossesOverByARaisedCosine)
{
    std::optional<CGraphRig> rig(std::in_place,
                                 paramXml("mix", "0") + withTripleAtPort1(moduleXml("modMix", {"mix"}), "modMix"), "");
    for (const auto& [mix, want] :
         {std::pair{0.0, 1.0}, {0.5, 2.0}, {0.25, 1.0 + 2.0 * 0.14644660940672624}, {1.0, 3.0}}) {
        rig->set("mix", mix);
        EXPECT_NEAR(rig->runOne(), want, 1e-14) << mix;
    }
    rig.reset();
    rig.emplace(paramXml("mix", "1") + moduleXml("modMix", {"mix"}));
    EXPECT_EQ(rig->runOne(), 1.0) << "nothing at port 1";
}

TEST(CModMult, MultipliesOrDividesByItsSecondPort)
{
    const auto run = [](const std::string& body, const std::string& attrs = "") {
        CGraphRig rig(body, attrs);
        rig.input = [](int, int) { return -0.5; };
        return rig.runOne();
    };
    EXPECT_EQ(run(withTripleAtPort1(moduleXml("modMult", {}), "modMult")), 0.75);
    EXPECT_DOUBLE_EQ(run(withTripleAtPort1(moduleXml("modMult", {}, "is-division='true'"), "modMult")), 1.0 / 3.0);
    EXPECT_EQ(run(moduleXml("modMult", {}) + moduleXml("modAbs", {}), "is-auto-links='true'"), 0.5)
        << "nothing at port 1, then the rectifier";
}

TEST(CModMute, ObeysMuteAndSoloOfItsElement)
{
    CGraphRig rig(paramXml("mute", "0") + paramXml("solo", "0,0,0") + paramXml("count", "0") +
                  moduleXml("modMute", {"mute", "*solo", "count"}));
    const struct {
        double mute, solo0, solo1, count;
        bool isOpen;
    } kRows[] = {{0, 0, 1, 0, true}, {0, 0, 0, 3, true},  {0, 0, 1, 3, false}, {0, 1, 1, 3, true},
                 {0, 0, 1, 1, true}, {1, 1, 0, 3, false}, {1, 0, 0, 0, false}};
    for (const auto& row : kRows) {
        rig.set("mute", row.mute);
        rig.set("solo", row.solo0, 0, 0);
        rig.set("solo", row.solo1, 0, 1);
        rig.set("count", row.count);
        const double out = rig.runOne();
        EXPECT_TRUE(row.isOpen ? out == 1.0 : isSoftSilence(out)) << row.mute << row.solo0 << row.solo1 << row.count;
    }
    rig.set("mute", 0.0);
    rig.set("solo", 1.0, 0, 40);
    rig.set("count", 1e300);
    EXPECT_EQ(rig.runOne(), 1.0) << "a count without end is no reason to look without end";
}

TEST(CModBypass, PicksItsPortAndSilencesGroupsThatAreNotSoloed)
{
    const std::string params =
        paramXml("enable", "0", "is-global='true' is-single-group='true'") + paramXml("solo", "0;0");
    std::optional<CGraphRig> rig(
        std::in_place, params + withTripleAtPort1(moduleXml("modBypass", {"enable", "+solo"}), "modBypass"), "");
    rig->setLines({{0, 0}, {1, 1}});
    const auto expect = [&rig](double enable, double solo0, double solo1, double first, double second) {
        rig->set("enable", enable);
        rig->set("solo", solo0, 0);
        rig->set("solo", solo1, 1);
        const auto out = rig->run(3);
        EXPECT_TRUE(first == 0.0 ? isSoftSilence(out.at(0).back()) : out.at(0).back() == first)
            << enable << solo0 << solo1;
        EXPECT_TRUE(second == 0.0 ? isSoftSilence(out.at(1).back()) : out.at(1).back() == second)
            << enable << solo0 << solo1;
    };
    expect(0, 0, 0, 1, 1);
    expect(1, 0, 0, 3, 3);
    expect(0, 0, 1, 0, 1);
    expect(1, 1, 0, 3, 0);
    expect(1, 1, 1, 3, 3);

    rig.reset();
    rig.emplace(params + moduleXml("modBypass", {"enable", "+solo"}));
    rig->set("enable", 1.0);
    EXPECT_TRUE(isSoftSilence(rig->runOne())) << "bypassed with nothing at port 1";
}

} // namespace
} // namespace qrb
