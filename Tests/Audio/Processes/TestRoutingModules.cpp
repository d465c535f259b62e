// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Audio/CGraphRig.h"
#include "Tests/Audio/Processes/ModuleXml.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace qrb {
namespace {

/// The lines that leave the process after one block, as "channel/group=value" in order; soft silence reads "~".
std::string routed(CGraphRig& rig)
{
    const auto out = rig.run(4);
    std::string text;
    for (const CAudioLineInfo& line : rig.main().output().lines()) {
        const double value = out.at(line.channel).back();
        text += (text.empty() ? "" : " ") + std::to_string(line.channel) + "/" + std::to_string(line.group) + "=" +
                (isSoftSilence(value) ? "~" : std::to_string(std::lround(value)));
    }
    return text;
}

/// Line i carries i + 1.
void numberLines(CGraphRig& rig, const std::vector<CGraphRig::CLineId>& lines)
{
    rig.setLines(lines);
    rig.input = [](int line, int) { return line + 1.0; };
}

void setElements(CGraphRig& rig, const std::string& path, const std::vector<double>& values)
{
    for (std::size_t i = 0; i < values.size(); ++i)
        rig.set(path, values[i], 0, static_cast<int>(i));
}

TEST(CModRouter, GivesEachInternalChannelTheFirstHostChannelThatAsks)
{
    CGraphRig rig(paramXml("routing", "1,2,3,4") + paramXml("grouping", "0,0,1,1") +
                  moduleXml("modRouter", {"*routing", "*grouping"}));
    numberLines(rig, {{0, 0}, {1, 0}, {2, 0}, {3, 0}});
    EXPECT_EQ(routed(rig), "0/0=1 1/0=2 2/1=3 3/1=4");
    setElements(rig, "routing", {1, 1, 0, 0});
    EXPECT_EQ(routed(rig), "0/0=1");
    setElements(rig, "routing", {3, 0, 4, 1});
    EXPECT_EQ(routed(rig), "2/1=1 3/1=3 0/0=4") << "in the order of the host channels";
    setElements(rig, "routing", {0, 0, 0, 0});
    EXPECT_EQ(routed(rig), "0/0=0") << "one line of zeros keeps the chain running";
    rig.setLines({{1, 0}});
    setElements(rig, "routing", {0, 2, 0, 0});
    EXPECT_EQ(routed(rig), "1/0=1") << "a routing goes by channel, not by place";
}

TEST(CModRouter, SendsInternalChannelsToAnyNumberOfHostChannels)
{
    CGraphRig rig(paramXml("routing", "1,1") + moduleXml("modRouter", {"*routing"}, "is-output='true'"));
    numberLines(rig, {{0, 0}, {2, 1}});
    EXPECT_EQ(routed(rig), "0/0=1 1/0=1");
    setElements(rig, "routing", {3, 1, 2, 3});
    EXPECT_EQ(routed(rig), "0/0=2 1/0=1 3/0=2") << "a channel that does not exist is skipped";
    setElements(rig, "routing", {0, 2, 0, 0});
    EXPECT_EQ(routed(rig), "0/0=0");
}

std::string coders(const std::string& kinds)
{
    std::string xml =
        paramXml("pairs", "1,1,1,0") + paramXml("encode", "0") + paramXml("decode", "1") + paramXml("bypass", "0");
    if (kinds.find('e') != std::string::npos)
        xml += moduleXml("modMSCoder", {"*pairs", "encode", "bypass"}, "", "encoder");
    if (kinds.find('d') != std::string::npos)
        xml += moduleXml("modMSCoder", {"*pairs", "decode", "bypass"}, "", "decoder");
    return xml;
}

TEST(CModMSCoder, PutsMidOnTheLowerChannelWhateverTheOrderOfLines)
{
    CGraphRig rig(coders("e"));
    numberLines(rig, {{3, 0}, {2, 1}, {1, 0}, {0, 2}}); // channel c carries 4 - c
    EXPECT_EQ(routed(rig), "3/0=1 2/1=2 1/0=1 0/2=4") << "4 and 3: mid 3.5, side 0.5; the third of a pair passes";
    EXPECT_EQ(rig.run(1).at(0).front(), 3.5);
    EXPECT_EQ(rig.run(1).at(1).front(), 0.5);
    setElements(rig, "pairs", {2, 1, 0, 2});
    EXPECT_EQ(rig.run(1).at(0).front(), 2.5);
    EXPECT_EQ(rig.run(1).at(3).front(), 1.5);
    EXPECT_EQ(rig.run(1).at(1).front(), 3.0) << "alone with its number";
    rig.set("bypass", 1.0);
    EXPECT_EQ(rig.run(1).at(0).front(), 4.0);
}

TEST(CModMSCoder, DecodingUndoesEncoding)
{
    CGraphRig rig(coders("ed"));
    rig.setLines({{2, 1}, {1, 0}, {0, 0}});
    rig.input = [](int line, int sample) { return std::sin(sample * 0.1 * (line + 1)); };
    const auto out = rig.run(200, 33);
    for (int channel = 0; channel < 3; ++channel)
        for (int i = 0; i < 200; ++i)
            ASSERT_NEAR(out.at(channel)[static_cast<std::size_t>(i)], rig.input(2 - channel, i), 1e-15);
}

TEST(CModSidechain, GivesEachChannelItsKeyOrSilence)
{
    CGraphRig rig(paramXml("source", "1,0,9,2") + paramXml("mute", "0,0,0,1") +
                  moduleXml("modSidechain", {"*source", "*mute"}));
    numberLines(rig, {{0, 0}, {1, 0}, {2, 1}, {3, 1}});
    EXPECT_EQ(routed(rig), "0/0=2 1/0=1 2/1=~") << "crossed, missing, muted";
    setElements(rig, "source", {7, 1, 0, 0});
    EXPECT_EQ(routed(rig), "1/0=2 2/1=1 0/0=~") << "silent keys stand last";
    setElements(rig, "mute", {1, 1, 1, 1});
    EXPECT_EQ(routed(rig), "") << "no key at all";
}

TEST(CModSidechain, WithoutSourcesEachChannelIsItsOwnKey)
{
    CGraphRig rig(moduleXml("modSidechain", {}));
    numberLines(rig, {{0, 0}, {1, 0}});
    EXPECT_EQ(routed(rig), "0/0=1 1/0=2");
}

TEST(CModSidechainMute, StopsKeyChannelsButAlwaysSendsALine)
{
    CGraphRig rig(paramXml("enable", "0,1,0") + moduleXml("modSidechainMute", {"*enable"}));
    numberLines(rig, {{1, 3}, {0, 0}, {2, 1}});
    EXPECT_EQ(routed(rig), "0/0=2 2/1=3");
    setElements(rig, "enable", {1, 1, 1});
    EXPECT_EQ(routed(rig), "1/3=~") << "silence in the name of the first line";
    rig.setLines({});
    (void)rig.run(1);
    const auto& log = rig.logLines();
    EXPECT_TRUE(std::ranges::find(
                    log, "Routing config error in CModSidechainMute! // plugin.modMain.modSidechainMute") != log.end());
}

TEST(CModDenormNoise, KeepsSilenceFarBelowHearingAndNeverZero)
{
    CGraphRig rig(moduleXml("modDenormNoise", {}));
    rig.setLines({{0, 0}, {1, 0}});
    rig.input = [](int, int) { return 0.0; };
    const auto out = rig.run(500, 17);
    EXPECT_TRUE(std::ranges::all_of(out.at(0), isSoftSilence));
    EXPECT_NE(out.at(0), out.at(1)) << "each line has its own seed";
}

} // namespace
} // namespace qrb
