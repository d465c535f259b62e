// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessStack.h"
#include "Tests/Audio/CGraphRig.h"

#include <gtest/gtest.h>
#include <limits>

namespace qrb {

namespace {

CAudioProcessStack& stackOf(CGraphRig& rig, const char* name = "st")
{
    return dynamic_cast<CAudioProcessStack&>(*rig.main().findNode(name));
}

/// Groups and the lengths of their chains, as "0:1 2:3".
std::string shape(CGraphRig& rig)
{
    std::string text;
    for (const auto& group : stackOf(rig).groups())
        for (const auto& chain : group->chains)
            text += (text.empty() ? "" : " ") + std::to_string(group->group) + ":" +
                    std::to_string(chain->instances.size());
    return text;
}

/// Levels of three elements in each of three groups; the elements multiply along a chain.
const std::string kLevels = paramXml("level", "2,3,5;20,30,50;200,300,500");
const std::string kCount = paramXml("count", "1;1;1");
const std::string kStack = kLevels + kCount + probeXml("st", "^level", "is-stacked='true' stack-param='^count'");

} // namespace

TEST(CAudioProcessStack, EachGroupHasItsChainAndReadsItsGroup)
{
    CGraphRig rig(kStack);
    rig.setLines({{0, 2}, {1, 2}});
    auto out = rig.run(1);
    EXPECT_EQ(shape(rig), "2:1");
    EXPECT_EQ(out[0].front(), 200.0);
    EXPECT_EQ(out[1].front(), 200.0);

    // Another group comes and goes without an effect on the first.
    const CAudioProcessBase* kept = stackOf(rig).sequence()[0];
    rig.setLines({{0, 2}, {1, 0}});
    out = rig.run(1);
    EXPECT_EQ(shape(rig), "0:1 2:1");
    EXPECT_EQ(out[0].front(), 200.0);
    EXPECT_EQ(out[1].front(), 2.0);
    EXPECT_EQ(stackOf(rig).sequence()[1], kept);
    rig.setLines({{0, 2}, {1, 2}});
    (void)rig.run(1);
    EXPECT_EQ(shape(rig), "2:1");
    EXPECT_EQ(stackOf(rig).sequence()[0], kept);
}

TEST(CAudioProcessStack, ChainsAreAsLongAsTheirGroupsCountSays)
{
    CGraphRig rig(kStack);
    rig.setLines({{0, 0}, {1, 1}});
    EXPECT_EQ(rig.run(1)[0].front(), 2.0);
    rig.set("count", 2.6, 1);
    auto out = rig.run(1);
    EXPECT_EQ(shape(rig), "0:1 1:3");
    EXPECT_EQ(out[0].front(), 2.0);
    EXPECT_EQ(out[1].front(), 20.0 * 30.0 * 50.0);
    EXPECT_EQ(stackOf(rig).sequence()[3]->fullName().toUtf8(), "plugin.modMain.st#2");
    EXPECT_EQ(stackOf(rig).sequence()[3]->elementIndex(), 2);

    rig.set("count", 2.0, 1);
    EXPECT_EQ(rig.run(1)[1].front(), 600.0);
    rig.set("count", 0.4, 1);
    out = rig.run(1);
    EXPECT_EQ(out.count(1), 0u); // a group without instance passes nothing
    EXPECT_EQ(out[0].front(), 2.0);
    rig.set("count", 1.0, 1);
    EXPECT_EQ(rig.run(1)[1].front(), 20.0);
}

TEST(CAudioProcessStack, CountsBeyondReasonAreHeldInBounds)
{
    CGraphRig rig(kStack);
    for (const double count : {1000.0, 1e300}) {
        rig.set("count", count);
        (void)rig.run(1);
        EXPECT_EQ(shape(rig), "0:32");
    }
    for (const double count : {-5.0, std::numeric_limits<double>::quiet_NaN()}) {
        rig.set("count", count);
        (void)rig.run(1);
        EXPECT_LE(stackOf(rig).sequence().size(), 1u);
    }
}

TEST(CAudioProcessStack, AShiftMovesTheElements)
{
    CGraphRig rig(kLevels + probeXml("st", "^level", "is-stacked='true' stack-index-shift='1'"));
    EXPECT_EQ(rig.runOne(), 3.0);
}

TEST(CAudioProcessStack, AChannelStackHasAChainForEachChannel)
{
    CGraphRig rig(kLevels + probeXml("st", "^level", "is-stacked='true' is-channel-stack='true'"));
    rig.setLines({{4, 0}, {1, 0}, {2, 1}});
    const auto out = rig.run(1);
    EXPECT_EQ(shape(rig), "0:1 0:1 1:1");
    EXPECT_EQ(out.at(4).front(), 2.0);
    EXPECT_EQ(out.at(2).front(), 20.0);
    rig.setLines({{4, 0}});
    (void)rig.run(1);
    EXPECT_EQ(shape(rig), "0:1");
}

TEST(CAudioProcessStack, AStackedProcessKeepsItsPortsAndReadsItsGroupInside)
{
    // Each group: port 1 (the input doubled) times the group's level, plus port 0.
    const std::string body = kLevels + paramXml("two", "2") + probeXml("double", "^two") +
                             "<audio:process-def name='st' is-stacked='true'>" + probeXml("in", "^^level") +
                             R"(<audio:process-link name='l' src='*/1' dst='in'/>
                                <audio:process-link name='l' src='in' dst='*'/>
                                <audio:process-link name='l' src='*' dst='*'/></audio:process-def>
                                <audio:process-link name='l' src='*' dst='double'/>
                                <audio:process-link name='l' src='double' dst='st/1'/>
                                <audio:process-link name='l' src='*' dst='st'/>
                                <audio:process-link name='l' src='st' dst='*'/>)";
    CGraphRig rig(body, "");
    rig.setLines({{0, 0}, {1, 1}});
    const auto out = rig.run(3);
    EXPECT_EQ(out.at(0).front(), 5.0);
    EXPECT_EQ(out.at(1).front(), 41.0);
}

TEST(CAudioProcessStack, StatesInsideFollowTheirGroup)
{
    const std::string body = paramXml("off", "0;1") + paramXml("two", "2") +
                             "<audio:process-def name='st' is-stacked='true' is-auto-links='true'>"
                             "<audio:process-bypass-state name='s' id='0' param='^off' value='1'/>" +
                             probeXml("in", "^^two", "bypass-state-id='0'") + "</audio:process-def>";
    CGraphRig rig(body);
    rig.setLines({{0, 0}, {1, 1}});
    auto out = rig.run(1);
    EXPECT_EQ(out[0].front(), 2.0);
    EXPECT_EQ(out[1].front(), 1.0);
    rig.set("off", 1.0, 0);
    rig.set("off", 0.0, 1);
    out = rig.run(1);
    EXPECT_EQ(out[0].front(), 1.0);
    EXPECT_EQ(out[1].front(), 2.0);
}

} // namespace qrb
