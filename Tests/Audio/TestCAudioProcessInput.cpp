// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Audio/CGraphRig.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

namespace qrb {

namespace {

std::string link(const std::string& from, const std::string& to, const std::string& attrs = "")
{
    return "<audio:process-link name='l' src='" + from + "' dst='" + to + "' " + attrs + "/>";
}

/// Sources of 3, -1, 2, 5 and 1 that meet on port 0 of "sum".
std::string meeting(const std::string& sumAttrs)
{
    std::string body = paramXml("one", "1");
    const int levels[] = {3, -1, 2, 5, 1};
    for (int i = 0; i < 5; ++i) {
        const std::string name = "s" + std::to_string(i);
        body += paramXml("level" + name, std::to_string(levels[i])) + probeXml(name, "^level" + name) +
                link("*", name) + link(name, "sum");
    }
    return body + probeXml("sum", "^one", sumAttrs) + link("sum", "*");
}

/// Two ways for a line: straight, and through `count` samples of reported latency that really delay.
std::string detour(const std::string& latency)
{
    return paramXml("on", "0") + paramXml("one", "1") +
           "<audio:process-bypass-state name='s' id='1' param='on' value='0'/>"
           "<audio:modDelay name='late' latency='" +
           latency + "' is-latency-positive='true' bypass-state-id='1'/>" +
           probeXml("sum", "^one", "input-combo-mode='avg'") + link("*", "late") + link("late", "sum") +
           link("*", "sum") + link("sum", "*");
}

} // namespace

TEST(CAudioProcessInput, SourcesOfOneChannelMergeAsDeclared)
{
    EXPECT_EQ(CGraphRig(meeting(""), "").runOne(), 10.0);
    EXPECT_EQ(CGraphRig(meeting("input-combo-mode='rubbish'"), "").runOne(), 10.0);
    EXPECT_EQ(CGraphRig(meeting("input-combo-mode='avg'"), "").runOne(), 10.0 * (1.0 / 5.0));
    EXPECT_EQ(CGraphRig(meeting("input-combo-mode='max'"), "").runOne(), 5.0);
}

TEST(CAudioProcessInput, KeyInputsStayLinesOfTheirOwn)
{
    CGraphRig rig(meeting("is-comp-input='true' is-terminal-whole='true'"), "");
    const auto out = rig.run(1);
    ASSERT_EQ(out.size(), 1u); // five lines of channel 0, which the output node sums
    EXPECT_EQ(out.at(0).front(), 10.0);
    EXPECT_EQ(rig.main().findNode("sum")->lines().size(), 5u);
    EXPECT_EQ(rig.main().findNode("sum")->output().lines().size(), 5u);
}

TEST(CAudioProcessInput, APortHoldsSixteenLines)
{
    CGraphRig rig(paramXml("one", "1") + probeXml("a", "^one"));
    std::vector<CGraphRig::CLineId> lines;
    for (int i = 0; i < 20; ++i)
        lines.push_back({i, 0});
    rig.setLines(lines);
    EXPECT_EQ(rig.run(3).size(), 16u);
}

TEST(CAudioProcessInput, EarlyLinesWaitForLateOnes)
{
    CGraphRig rig(detour("100"), "");
    rig.set("on", 1.0);
    rig.input = [](int, int sample) { return sample == 7 ? 1.0 : 0.0; };
    const auto out = rig.run(300, 50)[0];
    for (int i = 0; i < 300; ++i)
        ASSERT_EQ(out[static_cast<std::size_t>(i)], i == 107 ? 1.0 : 0.0) << i;
    EXPECT_EQ(rig.latency(), 100);
}

TEST(CAudioProcessInput, ADelayThatComesOrGoesCrossesOver)
{
    constexpr double kRate = 10000.0;
    constexpr int kFade = 150; // 15 ms
    CGraphRig rig(detour("20"), "");
    rig.setLines({{0, 0}}, kRate);
    rig.input = [](int, int sample) { return static_cast<double>(sample); };
    (void)rig.run(1000);
    EXPECT_EQ(rig.latency(), 0);
    rig.set("on", 1.0);
    (void)rig.run(1000);
    EXPECT_EQ(rig.latency(), 20);
    rig.set("on", 0.0);
    const auto out = rig.run(400, 64)[0];
    EXPECT_EQ(rig.latency(), 0);
    // The other way is gone; what stays moves from a delay of 20 to none.
    for (int i = 0; i < 400; ++i) {
        const double weight = i >= kFade ? 0.0 : 0.5 + 0.5 * std::cos(std::numbers::pi * i / kFade);
        ASSERT_NEAR(out[static_cast<std::size_t>(i)], 2000.0 + i - 20.0 * weight, 1e-8) << i;
    }
}

TEST(CAudioProcessInput, ADelayOutlivesAFlipThatDoesNotConcernIt)
{
    // Line 0 is delayed at "sum" behind the detour; line 1's chain flips meanwhile.
    CGraphRig rig(detour("50") + paramXml("flip", "0") +
                      "<audio:process-bypass-state name='t' id='2' param='flip' value='0'/>" +
                      probeXml("other", "^one", "bypass-state-id='2'") + link("*", "other"),
                  "");
    rig.set("on", 1.0);
    rig.input = [](int, int sample) { return static_cast<double>(sample); };
    for (int i = 0; i < 10; ++i) {
        rig.set("flip", i % 2);
        const auto out = rig.run(60)[0];
        EXPECT_EQ(out[0], std::max(0, 60 * i - 50));
    }
}

TEST(CAudioProcessInput, ADelayStaysWithItsLineWhenAnotherOfItsChannelJoins)
{
    // Two lines of channel 0 leave "inner" and wait for the late one; the one that comes and goes stands first.
    const std::string inner = "<audio:process-def name='inner'>"
                              "<audio:process-bypass-state name='s' id='1' param='^flip' value='0'/>" +
                              probeXml("x", "^^zero", "bypass-state-id='1'") +
                              "<audio:modDelay name='y' latency='50' is-latency-positive='true'/>" + link("*", "x") +
                              link("x", "*") + link("*", "y") + link("y", "*") + "</audio:process-def>";
    CGraphRig rig(paramXml("flip", "0") + paramXml("zero", "0") + paramXml("one", "1") +
                      "<audio:modDelay name='late' latency='100' is-latency-positive='true'/>" + inner +
                      probeXml("sum", "^one") + link("*", "late") + link("late", "sum") + link("*", "inner") +
                      link("inner", "sum") + link("sum", "*"),
                  "");
    rig.input = [](int, int sample) { return static_cast<double>(sample); };
    (void)rig.run(1000);
    for (int round = 0; round < 4; ++round) {
        rig.set("flip", round % 2 == 0 ? 1.0 : 0.0);
        const auto out = rig.run(1000)[0];
        for (int i = 0; i < 1000; ++i)
            ASSERT_NEAR(out[static_cast<std::size_t>(i)], 2.0 * (1000 * (round + 1) + i - 100), 1e-9) << i;
    }
}

TEST(CAudioProcessInput, ASampleRateChangeReconfiguresWithoutCrossingOver)
{
    CGraphRig rig(detour("20"), "");
    rig.set("on", 1.0);
    (void)rig.run(500);
    rig.setLines({{0, 0}}, 96000.0);
    const auto out = rig.run(100)[0];
    EXPECT_EQ(out[19], 0.0);
    EXPECT_EQ(out[20], 1.0);
    EXPECT_EQ(rig.main().findNode("sum")->sampleRate(), 96000.0);
}

TEST(CAudioProcessInput, DelayedUpdatesSetTheirFlagWhenTheirTimeHasCome)
{
    CGraphRig rig(paramXml("one", "1") + probeXml("a", "^one"));
    rig.setLines({{0, 0}}, 1000.0);
    (void)rig.runOne();
    std::uint8_t first = 0;
    std::uint8_t second = 0;
    rig.main().findNode("a")->addDelayedUpdate(0.025, &first);
    rig.main().findNode("a")->addDelayedUpdate(0.015, &second);
    (void)rig.run(10, 10);
    EXPECT_EQ(first + second, 0);
    (void)rig.run(10, 10);
    EXPECT_EQ(second, 1);
    rig.main().findNode("a")->cancelDelayedUpdates(&first);
    (void)rig.run(10, 10);
    EXPECT_EQ(first, 0);
}

} // namespace qrb
