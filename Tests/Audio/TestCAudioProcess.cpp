// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Audio/CGraphRig.h"

#include <gtest/gtest.h>

namespace qrb {

namespace {

/// Probes that multiply by primes: the product at the output tells which of them stand in the path.
std::string levels()
{
    return paramXml("two", "2") + paramXml("three", "3") + paramXml("five", "5") + paramXml("off", "0");
}

std::string link(const std::string& from, const std::string& to, const std::string& attrs = "")
{
    return "<audio:process-link name='l' src='" + from + "' dst='" + to + "' " + attrs + "/>";
}

std::string node(const std::string& name)
{
    return "<audio:modNode name='" + name + "'/>";
}

const std::string kState1 = "<audio:process-bypass-state name='s' id='1' param='off' value='1'/>";

} // namespace

TEST(CAudioProcess, AutoLinksChainWhatStandsInTheChain)
{
    CGraphRig rig(levels() + probeXml("a", "^two") + probeXml("side", "^five", "is-outoforder='true'") +
                  probeXml("proto", "^five", "is-prototype='true'") + probeXml("b", "^three"));
    EXPECT_EQ(rig.runOne(), 6.0);
    EXPECT_EQ(rig.order(), "a b");
    EXPECT_EQ(rig.main().findNode("side"), nullptr);
    EXPECT_EQ(rig.main().findNode("proto"), nullptr);
}

TEST(CAudioProcess, NodeItemsNameAPointWithoutStandingInTheChain)
{
    const std::string around = levels() + node("first") + node("second") + probeXml("a", "^two") + node("third") +
                               node("fourth") + probeXml("b", "^three") + node("last");
    {
        CGraphRig rig(around);
        EXPECT_EQ(rig.runOne(), 6.0);
        EXPECT_EQ(rig.order(), "a b");
        EXPECT_EQ(rig.main().findNode("third"), nullptr);
    }
    // A tap behind the first probe, by explicit link, sums with the chain: 2 * 5 + 2 * 3.
    CGraphRig rig(around + probeXml("tap", "^five", "is-outoforder='true'") + link("fourth", "tap") + link("tap", "*"));
    EXPECT_EQ(rig.runOne(), 16.0);
}

TEST(CAudioProcess, AChainThatHoldsNothingPassesTheInput)
{
    EXPECT_EQ(CGraphRig(node("a") + node("b")).runOne(), 1.0);
    EXPECT_EQ(CGraphRig("").runOne(), 1.0);
}

TEST(CAudioProcess, ANodeItemWithoutSourcePassesNothing)
{
    CGraphRig rig(levels() + node("lonely") + probeXml("a", "^two") + link("lonely", "a") + link("a", "*"), "");
    EXPECT_TRUE(std::isnan(rig.runOne()));
    EXPECT_EQ(rig.order(), "");
}

TEST(CAudioProcess, NodeItemsThatFeedEachOtherEnd)
{
    CGraphRig rig(levels() + node("x") + node("y") + probeXml("a", "^two") + link("x", "y") + link("y", "x") +
                      link("*", "x") + link("y", "a") + link("a", "*"),
                  "");
    EXPECT_EQ(rig.runOne(), 2.0);
}

TEST(CAudioProcess, StatesSwitchChildrenAndLinks)
{
    CGraphRig rig(levels() + kState1 + probeXml("a", "^two", "bypass-state-id='1'") + probeXml("b", "^three") +
                  probeXml("c", "^five", "is-outoforder='true'") + link("*", "c", "state-id='1'") +
                  link("c", "*", "bypass-state-id='7 1'"));
    EXPECT_EQ(rig.runOne(), 6.0);
    rig.set("off", 1.0);
    EXPECT_EQ(rig.runOne(), 3.0); // neither the child nor the way out of c; c gets its input now
    EXPECT_EQ(rig.order(), "b c");
    EXPECT_EQ(rig.main().findNode("a"), nullptr);
    rig.set("off", 0.0);
    EXPECT_EQ(rig.runOne(), 6.0);
    EXPECT_EQ(rig.order(), "a b");
}

TEST(CAudioProcess, AnEmptyOrAbsentStateMeansNone)
{
    CGraphRig rig(paramXml("zero", "0") + levels() +
                  "<audio:process-bypass-state name='s' id='0' param='zero' value='0'/>" +
                  probeXml("a", "^two", "bypass-state-id=''") + probeXml("b", "^three") +
                  probeXml("c", "^five", "bypass-state-id='0'"));
    EXPECT_EQ(rig.runOne(), 6.0);
}

TEST(CAudioProcess, AFlipLeavesUntouchedNodesAndTheirSignalsAlone)
{
    CGraphRig rig(levels() + kState1 + probeXml("a", "^two", "bypass-state-id='1'") +
                  probeXml("b", "^off", "is-age='true'"));
    EXPECT_EQ(rig.run(10)[0].back(), 9.0);
    CAudioProcessBase* kept = rig.main().findNode("b");
    rig.set("off", 1.0);
    EXPECT_EQ(rig.runOne(), 1.0 + 10.0); // one sample more of the same module, fed past the first
    EXPECT_EQ(rig.main().findNode("b"), kept);
    EXPECT_EQ(rig.main().findNode("a"), nullptr);
}

TEST(CAudioProcess, WhatTheInputDoesNotReachIsPruned)
{
    // c hangs on b, which is fed on port 1 alone.
    CGraphRig rig(levels() + probeXml("a", "^two") + probeXml("b", "^three") + probeXml("c", "^five") + link("*", "a") +
                      link("a", "*") + link("a", "b/1") + link("b", "c"),
                  "");
    EXPECT_EQ(rig.runOne(), 2.0);
    EXPECT_EQ(rig.order(), "a");
    EXPECT_EQ(rig.main().findNode("c"), nullptr);
}

TEST(CAudioProcess, ACycleIsLoggedAndTheRestRuns)
{
    CGraphRig rig(levels() + probeXml("a", "^two") + probeXml("b", "^three") + probeXml("c", "^five") + link("*", "a") +
                      link("a", "*") + link("a", "b") + link("b", "c") + link("c", "b"),
                  "");
    EXPECT_EQ(rig.runOne(), 2.0);
    EXPECT_EQ(rig.order(), "a");
    ASSERT_FALSE(rig.logLines().empty());
    EXPECT_EQ(rig.logLines().back(), "process seq err plugin.modMain");
}

TEST(CAudioProcess, OrderFollowsLinksThenDeclaration)
{
    const std::string body = levels() + kState1 + probeXml("z", "^two") + probeXml("m", "^two") +
                             probeXml("a", "^two") + probeXml("x", "^two", "bypass-state-id='1'") + link("*", "a") +
                             link("a", "z") + link("*", "m") + link("*", "x") + link("z", "*") + link("m", "*") +
                             link("x", "*");
    CGraphRig rig(body, "");
    EXPECT_EQ(rig.runOne(), 8.0);
    EXPECT_EQ(rig.order(), "m a x z");
    for (int flip = 0; flip < 3; ++flip) {
        rig.set("off", 1.0);
        EXPECT_EQ(rig.runOne(), 6.0);
        EXPECT_EQ(rig.order(), "m a z");
        rig.set("off", 0.0);
        EXPECT_EQ(rig.runOne(), 8.0);
        EXPECT_EQ(rig.order(), "m a x z");
    }
}

TEST(CAudioProcess, PortsOfAProcessReachItsChildren)
{
    // The inner process gets the input doubled on port 1 and adds it, tripled, to its port 0.
    CGraphRig rig(levels() + probeXml("a", "^two") + "<audio:process-def name='inner'>" + probeXml("b", "^^three") +
                      link("*/1", "b") + link("b", "*") + link("*", "*") + "</audio:process-def>" + link("*", "a") +
                      link("a", "inner/1") + link("*", "inner") + link("inner", "*"),
                  "");
    EXPECT_EQ(rig.runOne(), 7.0);
}

TEST(CAudioProcess, LinesThatGoAndComeReachTheOutput)
{
    CGraphRig rig(levels() + probeXml("a", "^two") + probeXml("b", "^three"));
    rig.setLines({{0, 0}, {1, 0}});
    rig.input = [](int line, int) { return line + 1.0; };
    EXPECT_EQ(rig.run(1).size(), 2u);
    rig.setLines({});
    EXPECT_TRUE(rig.run(1).empty());
    rig.setLines({{5, 1}});
    const auto result = rig.run(1);
    ASSERT_EQ(result.size(), 1u);
    EXPECT_EQ(result.at(5).front(), 6.0);
}

TEST(CAudioProcess, ChildrenMayBeAddedAndRemovedAtRunTime)
{
    CGraphRig rig(levels() + probeXml("a", "^two") + probeXml("b", "^three"));
    EXPECT_EQ(rig.runOne(), 6.0);
    const CAudioProcessDefBase& definition = rig.main().findNode("a")->definition();
    EXPECT_NE(errorText(rig.main().addProcess(definition, "b")).find("Duplicate audio process name 'b'."),
              std::string::npos);
    rig.main().removeProcess("b");
    EXPECT_EQ(rig.runOne(), 2.0);
    EXPECT_EQ(errorText(rig.main().addProcess(definition, "b")), "");
    EXPECT_EQ(rig.runOne(), 4.0);
    EXPECT_EQ(rig.order(), "a b");
}

TEST(CAudioProcess, RemapsAndPathsReachParametersAcrossLevels)
{
    // The inner probe's own "gain" is an alias of the outer "gains.main"; another one names its parameter from the root.
    const std::string inner = "<audio:process-def name='inner' is-auto-links='true'>" + probeXml("a", "gain") +
                              probeXml("b", "/plugin.modMain.three") + "</audio:process-def>";
    CGraphRig rig(levels() + "<core:object name='gains'>" + paramXml("main", "7") + "</core:object>" +
                  "<audio:param-remap name='r' orig='inner.a.gain' new='gains.main'/>" + inner);
    EXPECT_EQ(rig.runOne(), 21.0);
    rig.set("inner.a.gain", 2.0);
    EXPECT_EQ(rig.runOne(), 6.0);
}

} // namespace qrb
