// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/AudioCreators.h"
#include "Audio/Processes/CModProcessSwitch.h"
#include "Tests/Audio/CGraphRig.h"

#include <gtest/gtest.h>

namespace qrb {

namespace {

/// A switch of three probes: 0 and 1 by levels of their own under one name, 4 by a level of the process around.
std::string switchXml(const std::string& attrs, const std::string& slots = "01")
{
    const auto child = [](const std::string& name, const std::string& level) {
        return "<test:modProbe name='" + name + "'><audio:param-alloc name='a' index='0' param-name='level'/>" +
               paramXml("level", level, "") + "<audio:param-alloc name='b' index='1' param-name='none'/>" +
               "</test:modProbe>";
    };
    const std::string index = "<audio:param-alloc name='index' index='0' param-name='^pick'/>";
    const std::string count = "<audio:param-alloc name='count' index='1' param-name='^count'/>";
    return "<audio:modProcessSwitch name='sw' def-child-name='mod' process-list='1:.b; 0:.a ;4:.c' " + attrs + ">" +
           (slots.find('0') != std::string::npos ? index : "") + (slots.find('1') != std::string::npos ? count : "") +
           child("a", "2,3,5,7") + child("b", "10,20,30,40") +
           "<test:modProbe name='c'><audio:param-alloc name='a' index='0' param-name='outer'/>"
           "<audio:param-alloc name='b' index='1' param-name='none'/></test:modProbe></audio:modProcessSwitch>";
}

std::string body(const std::string& attrs, const std::string& slots = "01")
{
    return paramXml("pick", "0") + paramXml("count", "1", "is-single-element='true'") + paramXml("shared", "100") +
           "<audio:param-remap name='r' orig='sw.mod.outer' new='shared'/>" + switchXml(attrs, slots);
}

std::string loadError(const std::string& list)
{
    CTestModule module("<shared/>", audioCreators());
    std::string error;
    (void)module.tryLoadRoot("<root><audio:modProcessSwitch name='s' process-list='" + list +
                                 "'><audio:modGain name='a'/></audio:modProcessSwitch></root>",
                             error);
    return error;
}

} // namespace

TEST(CModProcessSwitch, RunsWhatItsIndexPicks)
{
    CGraphRig rig(body(""));
    EXPECT_EQ(rig.runOne(), 2.0);
    rig.set("pick", 1.4);
    EXPECT_EQ(rig.runOne(), 10.0) << "each entry has what it declares";
    rig.set("pick", 4.0);
    EXPECT_EQ(rig.runOne(), 100.0) << "remaps reach whatever stands there";
    rig.set("shared", 300.0);
    EXPECT_EQ(rig.runOne(), 300.0);
    rig.set("pick", 3.0);
    EXPECT_EQ(rig.runOne(), 2.0) << "0 stands in for what is not listed";
    rig.set("count", 5.0);
    EXPECT_EQ(rig.runOne(), 2.0) << "no bank";
}

TEST(CModProcessSwitch, PassesTheSignalWhereNothingIsPicked)
{
    {
        CGraphRig rig(body("def-index='7'"));
        rig.set("pick", 3.0);
        EXPECT_EQ(rig.runOne(), 1.0);
    }
    CGraphRig unbound(body("", ""));
    EXPECT_EQ(unbound.runOne(), 1.0);
}

TEST(CModProcessSwitch, ABankHasACopyForEachElementAboveItsOwn)
{
    CGraphRig rig(body("is-allpass-bank='true'"));
    EXPECT_EQ(rig.runOne(), 1.0);
    rig.set("count", 3.0);
    EXPECT_EQ(rig.runOne(), 3.0 * 5.0);
    rig.set("count", 4.0);
    rig.set("pick", 1.0);
    EXPECT_EQ(rig.runOne(), 20.0 * 30.0 * 40.0);
    rig.set("count", -1e300);
    EXPECT_EQ(rig.runOne(), 1.0);
}

TEST(CModProcessSwitch, ABankBeginsAboveTheElementOfItsNode)
{
    CGraphRig shifted(body("is-allpass-bank='true' stack-index-shift='2'"));
    shifted.set("count", 4.0);
    EXPECT_EQ(shifted.runOne(), 7.0);
    shifted.set("count", 3.0);
    EXPECT_EQ(shifted.runOne(), 1.0);
}

TEST(CModProcessSwitch, BuildsNothingNewWhileBothNumbersStand)
{
    CGraphRig rig(body(""));
    (void)rig.run(1);
    const auto& node = dynamic_cast<CModProcessSwitch&>(*rig.main().findNode("sw"));
    const CAudioProcessBase* child = node.sequence()[0];
    rig.set("pick", 0.3);
    (void)rig.run(1);
    EXPECT_EQ(node.sequence()[0], child);
    rig.setLines({{0, 0}, {1, 0}}, 96000.0);
    EXPECT_EQ(rig.run(1).size(), 2u);
    EXPECT_EQ(node.sequence()[0], child);
}

TEST(CModProcessSwitchDef, AListThatMakesNoSenseIsRefused)
{
    EXPECT_EQ(loadError("0:.a;1:.a"), "");
    EXPECT_NE(loadError("0:.a;.a").find("No index delimiter ':' found in item #2."), std::string::npos);
    EXPECT_NE(loadError("x:.a").find("Invalid index value 'x' in item #1."), std::string::npos);
    EXPECT_NE(loadError("-1:.a").find("Invalid index value '-1' in item #1."), std::string::npos);
    EXPECT_NE(loadError("3:.a;3:.a").find("Duplicate index value '3' used in item #2."), std::string::npos);
    EXPECT_NE(loadError("0:.b").find("Unable to find object '.b'"), std::string::npos);
}

} // namespace qrb
