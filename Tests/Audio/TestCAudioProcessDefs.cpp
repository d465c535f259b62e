// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/AudioCreators.h"
#include "Audio/CAudioParamPath.h"
#include "Audio/CAudioProcessBypassStateDef.h"
#include "Audio/CAudioProcessDef.h"
#include "Audio/CAudioProcessLinkDef.h"
#include "Tests/Support/CTestModule.h"

#include <gtest/gtest.h>

namespace qrb {

namespace {

/// The error of loading one element, "" if there is none.
std::string loadError(const std::string& xml)
{
    CTestModule module("<shared/>", audioCreators());
    std::string error;
    (void)module.tryLoadRoot("<root>" + xml + "</root>", error);
    return error;
}

bool failsWith(const std::string& xml, const std::string& text)
{
    const std::string error = loadError(xml);
    EXPECT_NE(error.find(text), std::string::npos) << xml << " gives: " << error;
    return !error.empty();
}

std::string link(const std::string& attrs)
{
    return "<audio:process-link name='l' " + attrs + "/>";
}

std::string state(const std::string& attrs)
{
    return "<audio:process-bypass-state name='s' param='p' " + attrs + "/>";
}

bool inRange(const char* text, double value)
{
    CAudioProcessBypassStateDef::CRange range;
    EXPECT_TRUE(CAudioProcessBypassStateDef::CRange::parse(text, range)) << text;
    return range.contains(value);
}

} // namespace

TEST(CAudioProcessLinkDef, EndsAreANameAndAPort)
{
    CTestModule module("<shared/>", audioCreators());
    CObject& root = module.loadRoot("<root>" + link("src='*/3' dst='mod' bypass-state-id='2, 5;7'") + "</root>");
    const auto& def = dynamic_cast<CAudioProcessLinkDef&>(CTestModule::find(root, "l"));
    EXPECT_TRUE(def.source().isOuter());
    EXPECT_EQ(def.source().port, 3);
    EXPECT_EQ(def.destination().process, CString("mod"));
    EXPECT_EQ(def.destination().port, 0);
    EXPECT_EQ(def.stateId(), -1);
    EXPECT_EQ(std::vector<int>(def.bypassStateIds().begin(), def.bypassStateIds().end()), (std::vector<int>{2, 5, 7}));
}

TEST(CAudioProcessLinkDef, RubbishIsRefused)
{
    EXPECT_TRUE(failsWith(link("dst='a'"), "No 'src' attribute defined."));
    EXPECT_TRUE(failsWith(link("src='a'"), "No 'dst' attribute defined."));
    EXPECT_TRUE(failsWith(link("src='/1' dst='a'"), "Invalid process in the 'src' attribute value '/1' specified."));
    EXPECT_TRUE(failsWith(link("src='a' dst='/'"), "Invalid process in the 'dst' attribute value '/' specified."));
    for (const std::string bad : {"a/", "a/x", "a/-1", "a/1/2", "a/1.5"}) {
        EXPECT_TRUE(failsWith(link("src='" + bad + "' dst='a'"), "Invalid port in the 'src' attribute value '" + bad));
        EXPECT_TRUE(failsWith(link("src='a' dst='" + bad + "'"), "Invalid port in the 'dst' attribute value '" + bad));
    }
    EXPECT_TRUE(failsWith(link("src='a' dst='b' state-id='-2'"), "Invalid state identifier '-2' specified."));
}

TEST(CAudioProcessBypassStateDef, RangesCompareIntegersInSteps)
{
    EXPECT_TRUE(inRange("[2;4]", 2.0));
    EXPECT_TRUE(inRange("[2;4]", 4.4));
    EXPECT_FALSE(inRange("[2;4]", 4.5));
    EXPECT_FALSE(inRange("(2;4]", 2.4));
    EXPECT_TRUE(inRange("(2;4]", 2.5));
    EXPECT_FALSE(inRange("[2;4)", 4.0));
    EXPECT_TRUE(inRange("[*;4]", -1e300));
    EXPECT_TRUE(inRange("(2;*)", 1e300));
    EXPECT_TRUE(inRange("[0.5;1;0.25]", 0.4)); // 0.4 / 0.25 rounds to 2
    EXPECT_FALSE(inRange("[0.5;1;0.25]", 0.37));
    CAudioProcessBypassStateDef::CRange range;
    for (const char* bad :
         {"", "[", "[]", "[1]", "1;2", "[1;2", "[1;x]", "[1;2;0]", "[1;2;-1]", "[1;2;*]", "[1;2;1;1]"})
        EXPECT_FALSE(CAudioProcessBypassStateDef::CRange::parse(bad, range)) << bad;
}

TEST(CAudioProcessBypassStateDef, ConditionsOnOneAndTwoParameters)
{
    CTestModule module("<shared/>", audioCreators());
    const auto holds = [&](const std::string& attrs, double value, double andValue = 0.0) {
        CObject& root = module.loadRoot("<root>" + state(attrs) + "</root>");
        return dynamic_cast<CAudioProcessBypassStateDef&>(CTestModule::find(root, "s")).holds(value, andValue);
    };
    EXPECT_TRUE(holds("value='1' and-value='5'", 1.05));
    EXPECT_FALSE(holds("value='1'", 1.2));
    EXPECT_TRUE(holds("", 0.0));
    EXPECT_FALSE(holds("is-inverted='true'", 0.0));
    EXPECT_TRUE(holds("range='[1;3]' value='9'", 2.0));
    EXPECT_TRUE(holds("value='1' and-param='q' and-value='2'", 1.0, 2.0));
    EXPECT_FALSE(holds("value='1' and-param='q' and-value='2'", 1.0, 1.0));
    EXPECT_TRUE(holds("range='[1;3]' and-range='[5;6]' and-param='q'", 2.0, 5.0));
    EXPECT_FALSE(holds("range='[1;3]' and-range='[5;6]' and-param='q'", 2.0, 4.0));
    EXPECT_FALSE(holds("range='[1;3]' and-param='q'", 2.0, 0.0)); // one range alone does not count
    EXPECT_TRUE(holds("range='[1;3]' and-param='q'", 0.0, 0.0));
}

TEST(CAudioProcessBypassStateDef, RubbishIsRefused)
{
    EXPECT_TRUE(failsWith("<audio:process-bypass-state name='s'/>", "Invalid parameter name specified."));
    EXPECT_TRUE(failsWith(state("range='1'"), "Invalid 'range' attribute value '1' specified."));
    EXPECT_TRUE(failsWith(state("and-range='[2]'"), "Invalid 'and-range' attribute value '[2]' specified."));
}

TEST(CAudioProcessDefBase, DeclarationsAreSortedAndGroupsNameTheirMembers)
{
    CTestModule module(R"(<shared><audio:cvt-real name="cvt"/>
        <audio:process-def name="p" stack-index-shift="2" input-combo-mode="max" bypass-state-id="">
          <audio:param name="own" element-size="1" converter="cvt" min-values="0" max-values="1" def-values="0"/>
          <core:object name="group">
            <audio:param name="inner" element-size="1" converter="cvt" min-values="0" max-values="1" def-values="0"/>
          </core:object>
          <audio:param-alloc name="a" index="3" param-name="own"/>
          <audio:modGain name="g"/><audio:process-def name="q"/>
        </audio:process-def></shared>)",
                       audioCreators());
    const auto& def = module.shared<CAudioProcessDef>("p");
    ASSERT_EQ(def.params().size(), 2u);
    EXPECT_EQ(def.params()[0].name, CString(".own"));
    EXPECT_EQ(def.params()[1].name, CString(".group.inner"));
    EXPECT_EQ(def.paramAllocs().begin()->first, 3);
    EXPECT_EQ(def.processes().size(), 2u);
    EXPECT_EQ(def.stackIndexShift(), 2);
    EXPECT_EQ(def.inputCombo(), EInputCombo::maximum);
    EXPECT_EQ(def.bypassStateId(), CAudioProcessDefBase::kNoState);
    EXPECT_TRUE(failsWith("<audio:modGain name='g' stack-index-shift='-1'/>",
                          "Invalid stack index shift value '-1' specified."));
}

TEST(CAudioParamPath, PathsStartAtTheProcess)
{
    const CString process("plugin.modMain.mod#2");
    EXPECT_EQ(resolveParamPath(process, "freq"), CString("plugin.modMain.mod#2.freq"));
    EXPECT_EQ(resolveParamPath(process, ".eq.freq"), CString("plugin.modMain.mod#2.eq.freq"));
    EXPECT_EQ(resolveParamPath(process, "^eq.freq"), CString("plugin.modMain.eq.freq"));
    EXPECT_EQ(resolveParamPath(process, "^^eq"), CString("plugin.eq"));
    EXPECT_EQ(resolveParamPath(process, "^^^^^eq"), CString("eq"));
    EXPECT_EQ(resolveParamPath(process, "/plugin.x"), CString("plugin.x"));
}

} // namespace qrb
