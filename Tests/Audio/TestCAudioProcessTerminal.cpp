// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Audio/CGraphRig.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

namespace qrb {

namespace {

constexpr int kFade = 100;

/// Crossfades of 100 samples.
const std::string kFadeAttrs = "xfade-length='0.1' is-smooth-update='true'";
constexpr double kRate = 1000.0;

double oldWeight(int sample)
{
    return sample >= kFade ? 0.0 : 0.5 + 0.5 * std::cos(std::numbers::pi * sample / kFade);
}

} // namespace

TEST(CAudioProcessTerminal, TheFirstUpdateAppliesAtOnceAndLaterOnesCrossOver)
{
    CGraphRig rig(paramXml("level", "3") + probeXml("a", "^level", kFadeAttrs));
    rig.setLines({{0, 0}}, kRate);
    EXPECT_EQ(rig.run(50)[0].front(), 3.0);
    rig.set("level", 1.0);
    const auto out = rig.run(150, 32)[0];
    for (int i = 0; i < 150; ++i)
        ASSERT_NEAR(out[static_cast<std::size_t>(i)], 1.0 + 2.0 * oldWeight(i), 1e-12) << i;
    EXPECT_EQ(out.back(), 1.0);
}

TEST(CAudioProcessTerminal, ChangesDuringAFadeMakeOneFurtherFadeBehindIt)
{
    CGraphRig rig(paramXml("level", "0") + probeXml("a", "^level", kFadeAttrs));
    rig.setLines({{0, 0}}, kRate);
    (void)rig.run(1);
    rig.set("level", 1.0);
    (void)rig.run(10);
    (void)CGraphRig::takeProbeLog();
    rig.set("level", 7.0);
    (void)rig.run(10);
    rig.set("level", 2.0);
    const auto out = rig.run(230, 37)[0];
    EXPECT_EQ(CGraphRig::takeProbeLog(), "s0r0u0"); // one module for both changes
    for (int i = 20; i < 250; ++i) {
        const double expected = i < kFade ? 1.0 - oldWeight(i) : 2.0 - oldWeight(i - kFade);
        ASSERT_NEAR(out[static_cast<std::size_t>(i - 20)], expected, 1e-12) << i;
    }
}

TEST(CAudioProcessTerminal, FadesDoNotDependOnWhereBlocksEnd)
{
    std::vector<double> reference;
    for (const int block : {1, 17, 64, 512, 1000}) {
        CGraphRig rig(paramXml("level", "1") + probeXml("a", "^level", kFadeAttrs + " is-age='true'"));
        rig.setLines({{0, 0}}, kRate);
        rig.input = [](int, int sample) { return std::sin(0.1 * sample); };
        std::vector<double> out;
        const auto append = [&](int count) {
            const auto part = rig.run(count, block)[0];
            out.insert(out.end(), part.begin(), part.end());
        };
        append(33);
        rig.set("level", 0.25);
        append(41);
        rig.set("level", 0.75); // waits for sample 133
        append(500);
        if (reference.empty())
            reference = out;
        EXPECT_EQ(out, reference) << "blocks of " << block;
    }
}

TEST(CAudioProcessTerminal, AFadeIsNeverShorterThanATenthOfAMillisecond)
{
    CGraphRig rig(paramXml("level", "0") + probeXml("a", "^level", "xfade-length='0' is-smooth-update='true'"));
    (void)rig.run(1);
    rig.set("level", 1.0);
    const auto out = rig.run(5)[0];
    EXPECT_EQ(out[0], 0.0);
    EXPECT_NEAR(out[2], 0.5, 1e-12);
    EXPECT_LT(out[3], 1.0);
    EXPECT_EQ(out[4], 1.0);
}

TEST(CAudioProcessTerminal, OnlySmoothParametersCrossOver)
{
    const std::string body =
        paramXml("hard", "1") + paramXml("soft", "0") +
        "<test:modProbe name='a' xfade-length='0.1'><audio:param-alloc name='a' index='0' param-name='^hard'/>"
        "<audio:param-alloc name='b' index='2' param-name='^soft' is-smooth-update='true'/></test:modProbe>";
    CGraphRig rig(body);
    rig.setLines({{0, 0}}, kRate);
    (void)rig.run(1);
    (void)CGraphRig::takeProbeLog();
    rig.set("hard", 2.0);
    EXPECT_EQ(rig.runOne(), 2.0);
    EXPECT_EQ(CGraphRig::takeProbeLog(), "u0");
    rig.set("hard", 4.0);
    rig.set("soft", 1.0);
    EXPECT_EQ(rig.runOne(), 2.0); // the old module's first full-weight sample
    EXPECT_EQ(CGraphRig::takeProbeLog(), "s0r0u0");
}

TEST(CAudioProcessTerminal, EachLineHasItsModuleAndReadsItsGroup)
{
    CGraphRig rig(paramXml("level", "1;10;100") + probeXml("a", "^level"));
    rig.setLines({{3, 2}, {0, 0}, {1, 1}});
    (void)CGraphRig::takeProbeLog();
    auto out = rig.run(4);
    EXPECT_EQ(out[3].front(), 100.0);
    EXPECT_EQ(out[0].front(), 1.0);
    EXPECT_EQ(out[1].front(), 10.0);
    EXPECT_EQ(CGraphRig::takeProbeLog(), "s3r3s0r0s1r1u3u0u1");

    rig.set("level", 20.0, 1);
    out = rig.run(1);
    EXPECT_EQ(out[1].front(), 20.0);
    EXPECT_EQ(CGraphRig::takeProbeLog(), "u1"); // only the group that changed

    // A line that goes gives its module back; the one that comes gets it, cleared.
    rig.setLines({{3, 2}, {7, 1}, {0, 0}});
    out = rig.run(1);
    EXPECT_EQ(out.size(), 3u);
    EXPECT_EQ(out[7].front(), 20.0);
    EXPECT_NE(CGraphRig::takeProbeLog().find("s7r7"), std::string::npos);
}

TEST(CAudioProcessTerminal, SingleGroupParametersTouchEveryGroup)
{
    CGraphRig rig(paramXml("level", "1", "is-global='true' is-single-group='true'") + probeXml("a", "^level"));
    rig.setLines({{0, 3}});
    EXPECT_EQ(rig.runOne(), 1.0);
    rig.set("level", 5.0);
    EXPECT_EQ(rig.runOne(), 5.0);
}

TEST(CAudioProcessTerminal, AWholeTerminalHasOneModuleForAllLines)
{
    CGraphRig rig(paramXml("level", "2") + probeXml("a", "^level", "is-terminal-whole='true' is-age='true'"));
    rig.setLines({{4, 0}, {2, 1}});
    rig.input = [](int line, int) { return line + 1.0; };
    (void)CGraphRig::takeProbeLog();
    const auto out = rig.run(2);
    EXPECT_EQ(out.at(4), (std::vector<double>{2.0, 3.0}));
    EXPECT_EQ(out.at(2), (std::vector<double>{4.0, 5.0}));
    EXPECT_EQ(CGraphRig::takeProbeLog(), "s4r4u4");
}

TEST(CAudioProcessTerminal, LatencyIsReportedAndHeldOutInAFade)
{
    CGraphRig rig(paramXml("latency", "10") + paramXml("level", "0") + "<test:modProbe name='a' " + kFadeAttrs +
                  "><audio:param-alloc name='a' index='0' param-name='^level'/>"
                  "<audio:param-alloc name='b' index='1' param-name='^latency'/></test:modProbe>");
    rig.setLines({{0, 0}}, kRate);
    (void)rig.run(1);
    EXPECT_EQ(rig.latency(), 10);
    rig.set("latency", 30.0);
    rig.set("level", 1.0);
    const auto out = rig.run(130)[0];
    EXPECT_EQ(rig.latency(), 30);
    EXPECT_EQ(out[19], 0.0); // the old module alone while the new one fills
    EXPECT_NEAR(out[20 + kFade / 2], 0.5, 1e-12);
    EXPECT_EQ(out[20 + kFade], 1.0);
}

TEST(CAudioProcessTerminal, AResetStartsAfreshWithoutAFade)
{
    CGraphRig rig(paramXml("level", "1") + probeXml("a", "^level", kFadeAttrs + " is-age='true'"));
    rig.setLines({{0, 0}}, kRate);
    (void)rig.run(20);
    rig.set("level", 2.0);
    (void)rig.run(20);
    rig.reset();
    EXPECT_EQ(rig.runOne(), 2.0);
}

TEST(CAudioProcessTerminal, AModuleMayAskForALaterUpdate)
{
    CGraphRig rig(paramXml("level", "1") + probeXml("a", "^level", "again='0.02'"));
    rig.setLines({{0, 0}}, kRate);
    (void)rig.run(20, 10);
    EXPECT_EQ(CGraphRig::takeProbeLog(), "s0r0u0");
    (void)rig.run(20, 10);
    EXPECT_EQ(CGraphRig::takeProbeLog(), "u0");
    (void)rig.run(40, 10);
    EXPECT_EQ(CGraphRig::takeProbeLog(), "");
    rig.setLines({}); // the module rests with its wish open
    rig.setLines({{0, 0}}, 2.0 * kRate);
    (void)rig.run(1);
    rig.setLines({});
    (void)rig.run(100, 10);
    EXPECT_EQ(CGraphRig::takeProbeLog(), "s0r0u0");
}

TEST(CAudioProcessTerminal, ALaterUpdateCrossesOverForNoChangeThatIsPast)
{
    CGraphRig rig(paramXml("level", "1") +
                  "<test:modProbe name='a' again='0.4'><audio:param-alloc name='a' index='0' param-name='^level' "
                  "is-smooth-update='true'/></test:modProbe>");
    rig.setLines({{0, 0}}, kRate);
    (void)rig.run(10);
    rig.set("level", 2.0);
    (void)rig.run(380, 10); // the new module asks too
    (void)CGraphRig::takeProbeLog();
    (void)rig.run(100, 10);
    EXPECT_EQ(CGraphRig::takeProbeLog(), "u0");
}

TEST(CAudioProcessTerminal, AMissingParameterIsLoggedAndReadsItsDefault)
{
    CGraphRig rig("<test:modProbe name='a'/>");
    EXPECT_EQ(rig.runOne(), 1.0);
    EXPECT_EQ(rig.countLogged("regModuleParam error 0"), 1);
    EXPECT_EQ(rig.countLogged("regModuleParam error 1"), 1);
}

} // namespace qrb
