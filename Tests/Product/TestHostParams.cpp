// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamConverter.h"
#include "Audio/CAudioWrapper.h"
#include "Audio/HostParams/CAudioExtParam.h"
#include "Audio/Interface/CAudioInterfaceBase.h"
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/CWriteSeqBuffer.h"
#include "Tools/Render/CProductModule.h"

#include <cmath>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <utility>

namespace {

using namespace qrb;

/// An instance in a host that writes down what it is told.
class CHostedInstance : public CAudioWrapper {
public:
    void onExtParamChange(std::int32_t index, double normal) override
    {
        told.push_back(name(index) + "=" + std::to_string(normal));
    }
    void beginEdit(std::int32_t index) override { told.push_back("begin " + name(index)); }
    void endEdit(std::int32_t index) override { told.push_back("end " + name(index)); }
    void onProgramChange() override { told.push_back("program"); }

    [[nodiscard]] std::vector<std::string> takeTold()
    {
        runIdle();
        return std::exchange(told, {});
    }
    [[nodiscard]] CAudioParam& param(const std::string& path)
    {
        return paramCollector().getParam(CString::fromUtf8("plugin.modMain." + path));
    }
    [[nodiscard]] std::string list(const std::string& path)
    {
        CAudioParam& listed = param("io-params." + path);
        const CAudioParamGuard guard(paramCollector());
        std::string text;
        for (std::int32_t i = 0; i < listed.editStorage(guard).elementCount(0); ++i) {
            text += i == 0 ? "" : ",";
            text += listed.info()->format.hasItems() ? listed.text(0, i).toUtf8()
                                                     : std::to_string(std::lround(listed.value(0, i)));
        }
        return text;
    }

    std::vector<std::string> told;

private:
    std::string name(std::int32_t index) { return extParams()[static_cast<std::size_t>(index)]->getName().toUtf8(); }
};

class TestHostParams : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_module.isEntered()) << m_error;
        m_instance = std::make_unique<CHostedInstance>();
        const CErrorPtr failure = m_instance->init();
        ASSERT_FALSE(failure) << failure->text().toUtf8();
        static_cast<void>(m_instance->takeTold());
    }
    /// Reports a layout by the names of its speakers.
    void report(const std::vector<const char*>& inputs, const std::vector<const char*>& sidechain = {})
    {
        CArray<CString> labels[2];
        for (const char* const label : inputs)
            labels[0].append(label);
        for (const char* const label : sidechain)
            labels[1].append(label);
        m_instance->reportLayout(labels[0], labels[1]);
    }

    std::string m_error;
    render::CProductModule m_module{m_error};
    std::unique_ptr<CHostedInstance> m_instance;
};

using Strings = std::vector<std::string>;

TEST_F(TestHostParams, AreThese72InThisOrder)
{
    Strings expected = {"Bypass plugin.modMain.bypass-enable 0 0",
                        "Oversmp plugin.modMain.oversampling 0 0",
                        "Bands plugin.modMain.modThumpcraft.xo-count 0 0",
                        "Steep plugin.modMain.modThumpcraft.xo-type 0 0",
                        "Clipper plugin.modMain.modThumpcraft.clip-enable 0 0",
                        "B1Solo plugin.modMain.modThumpcraft.bandsolo 0 0",
                        "B2Solo plugin.modMain.modThumpcraft.bandsolo 0 1",
                        "B3Solo plugin.modMain.modThumpcraft.bandsolo 0 2"};
    const auto add = [&](const std::string& name, const char* param, int group, int element) {
        expected.push_back(name + " plugin.modMain.modThumpcraft." + param + " " + std::to_string(group) + " " +
                           std::to_string(element));
    };
    const std::vector<std::pair<const char*, const char*>> bandRows = {
        {"CEnab", "comp-enable"}, {"CThrs", "comp-threshold"}, {"CRto", "comp-ratio"},
        {"CAtk", "comp-attack"},  {"CRls", "comp-release"},    {"SEnab", "sat-enable"},
        {"SMode", "sat-mode"},    {"SDriv", "sat-drive"},      {"OGain", "bandgain"}};
    for (int group = 0; group < 2; ++group) {
        const std::string digit = std::to_string(group + 1);
        add(digit + "GEnabl", "gate-enable", group, 0);
        add(digit + "GThrs", "gate-threshold", group, 0);
        add(digit + "GRatio", "gate-ratio", group, 0);
        for (int band = 0; band < 3; ++band)
            for (const auto& [name, param] : bandRows)
                add(digit + name[0] + std::to_string(band + 1) + (name + 1), param, group, band);
        add(digit + "DryMix", "drymix", group, 0);
        add(digit + "OGain", "outgain", group, 0);
    }
    Strings declared;
    for (const CAudioExtParam* const param : m_instance->extParams())
        declared.push_back(param->getName().toUtf8() + " " + param->param().path().toUtf8() + " " +
                           std::to_string(param->group()) + " " + std::to_string(param->element()));
    ASSERT_EQ(declared.size(), 72u);
    EXPECT_EQ(declared, expected);
}

TEST_F(TestHostParams, ReachTheirElementAndDoNotComeBackToTheHost)
{
    for (CAudioExtParam* const row : m_instance->extParams()) {
        for (const double normal : {1.0, 0.0, 0.3}) {
            row->setNormal(normal);
            const CAudioParamInfo& info = *row->param().info();
            const double plain = info.components[0].converter->fromNormal(info, 0, normal);
            EXPECT_EQ(row->param().value(row->group(), row->element()), plain);
            EXPECT_EQ(row->getNormal(), normal);
        }
        EXPECT_TRUE(row->trySetNormal(0.7));
        EXPECT_TRUE(row->trySetNormal(std::nan("")));
        EXPECT_EQ(row->getNormal(), 0.7);
        // Text and back, as a host's own editor does it; the names of states may be numbers themselves.
        const CString text = row->formatNormal(0.7);
        const bool isNamed = row->param().info()->components[0].converter->isDiscrete();
        EXPECT_TRUE(isNamed || row->formatNormal(row->parseNormal(text)) == text) << row->getName().toUtf8();
        EXPECT_EQ(row->parseNormal("no such text"), row->getDefaultNormal());
    }
    for (const std::string& line : m_instance->takeTold())
        EXPECT_NE(line.find("Mode"), std::string::npos) << line; // the twelfth mode has no voice of its own
}

TEST_F(TestHostParams, TellTheHostOnceAndBetweenTheEndsOfAGesture)
{
    CAudioParam& threshold = m_instance->param("modThumpcraft.comp-threshold");
    m_instance->onBeginChange(threshold, 0, 1);
    for (const double value : {-20.0, -30.0, -36.0})
        EXPECT_TRUE(threshold.setElement(0, 1, value));
    m_instance->onEndChange(threshold, 0, 1);
    EXPECT_TRUE(threshold.setElement(3, 1, -36.0)); // a group that the host does not see
    m_instance->onBeginChange(m_instance->param("modThumpcraft.gate-params.knee"), 0, 0);
    EXPECT_EQ(m_instance->takeTold(), (Strings{"begin 1C2Thrs", "1C2Thrs=0.500000", "end 1C2Thrs"}));
    EXPECT_TRUE(threshold.setElement(0, 1, -36.0));
    EXPECT_EQ(m_instance->takeTold(), Strings{});

    // A preset tells what it changes, and nothing else.
    EXPECT_TRUE(m_instance->param("modThumpcraft.drymix").setElement(1, 0, 0.5));
    EXPECT_EQ(m_instance->takeTold(), Strings{"2DryMix=0.500000"});
    m_instance->paramRegistry()->masterReset();
    const Strings told = m_instance->takeTold();
    EXPECT_EQ(std::set<std::string>(told.begin(), told.end()),
              (std::set<std::string>{"1C2Thrs=0.750000", "2DryMix=0.000000"}));
}

TEST_F(TestHostParams, RoutingFollowsTheHostsLayoutUntilTheUserTouchesIt)
{
    m_instance->applyDefaultRouting({});
    EXPECT_EQ(m_instance->list("group-names"), "1,2,3,4,5,6,7,8"); // no layout yet

    struct CCase {
        std::vector<const char*> inputs;
        std::vector<const char*> keys;
        const char* names;
        const char* group;
        const char* in;
        const char* out;
        const char* sidechain;
        const char* mute;
        const char* grouping;
    };
    const CCase cases[] = {{{"M"},
                            {},
                            "M",
                            "MONO",
                            "1,0,0,0,0,0,0,0",
                            "1,0,0,0,0,0,0,0",
                            "0,1,2,3,4,5,6,7",
                            "0,0,0,0,0,0,0,0",
                            "0,0,1,1,2,2,3,3"},
                           {{"L", "R"},
                            {},
                            "L,R",
                            "STEREO",
                            "1,2,0,0,0,0,0,0",
                            "1,2,0,0,0,0,0,0",
                            "0,1,2,3,4,5,6,7",
                            "0,0,0,0,0,0,0,0",
                            "0,0,1,1,2,2,3,3"},
                           {{"L", "R"},
                            {"L", "R"},
                            "L,R,L,R",
                            "STEREO",
                            "1,2,3,4,0,0,0,0",
                            "1,2,0,0,0,0,0,0",
                            "2,3,2,3,0,0,0,0",
                            "0,0,1,1,0,0,0,0",
                            "0,0,0,0,2,2,3,3"},
                           {{"L", "R", "C", "Lfe", "Ls", "Rs"},
                            {"M"},
                            "L,R,C,Lfe,Ls,Rs,M",
                            "MULTI",
                            "1,2,3,4,5,6,7,0",
                            "1,2,3,4,5,6,0,0",
                            "6,6,6,6,6,6,6,0",
                            "0,0,0,0,0,0,1,0",
                            "0,0,0,0,0,0,0,3"},
                           {{"M"},
                            {"L", "R"},
                            "M,L,R",
                            "MONO",
                            "1,2,3,0,0,0,0,0",
                            "1,0,0,0,0,0,0,0",
                            "1,1,2,0,0,0,0,0",
                            "0,1,1,0,0,0,0,0",
                            "0,0,0,1,2,2,3,3"},
                           {{"L", "R", "C", "Lfe", "Ls", "Rs", "Sl", "Sr"},
                            {"L", "R"},
                            "L,R,C,Lfe,Ls,Rs,Sl,Sr,L,R",
                            "MULTI",
                            "1,2,3,4,5,6,7,8",
                            "1,2,3,4,5,6,7,8",
                            "0,1,2,3,4,5,6,7",
                            "0,0,0,0,0,0,0,0",
                            "0,0,0,0,0,0,0,0"}};
    for (const CCase& layout : cases) {
        report(layout.inputs, layout.keys);
        EXPECT_EQ(m_instance->list("in-channel-names"), layout.names);
        EXPECT_EQ(m_instance->list("group-names"), std::string(layout.group) + ",G-2,G-3,G-4,G-5,G-6,G-7,G-8");
        EXPECT_EQ(m_instance->list("in-routing"), layout.in);
        EXPECT_EQ(m_instance->list("out-routing"), layout.out);
        EXPECT_EQ(m_instance->list("sidechain"), layout.sidechain);
        EXPECT_EQ(m_instance->list("sidechain-mute"), layout.mute);
        EXPECT_EQ(m_instance->list("grouping"), layout.grouping);
    }
    // A reset brings the declared routing, and the layout that the host has comes back behind it.
    report({"L", "R"}, {"L", "R"});
    m_instance->paramRegistry()->masterReset();
    EXPECT_EQ(m_instance->list("in-routing"), "1,2,3,4,0,0,0,0");
    // Names are the user's own as soon as one is.
    EXPECT_TRUE(m_instance->param("io-params.in-channel-names").setString(0, 1, "Snare"));
    report({"M"});
    EXPECT_EQ(m_instance->list("in-channel-names"), "L,Snare,L,R");
    EXPECT_EQ(m_instance->list("out-routing"), "1,0,0,0,0,0,0,0");
    EXPECT_TRUE(m_instance->param("io-params.grouping").setElement(0, 3, 0.0));
    report({"L", "R"});
    EXPECT_EQ(m_instance->list("out-routing"), "1,0,0,0,0,0,0,0");
}

TEST_F(TestHostParams, WhateverTheUserTouchesKeepsTheRoutingAlsoInTheNextSession)
{
    struct CTouch {
        const char* path;
        int element;
        double value;
    };
    const char* const tables[] = {"in-routing", "out-routing", "sidechain", "sidechain-mute", "grouping", "ms-pairs"};
    for (const CTouch& touch : {CTouch{"in-routing", 0, 2.0},
                                {"out-routing", 1, 1.0},
                                {"sidechain", 0, 1.0},
                                {"sidechain-mute", 2, 0.0},
                                {"grouping", 1, 1.0},
                                {"ms-pairs", 0, 1.0},
                                {"group-names", 0, 0.0},
                                {"group-names", 5, 0.0}}) {
        const std::string where = touch.path + std::to_string(touch.element);
        SetUp();
        report({"L", "R"}, {"L", "R"});
        CAudioParam& touched = m_instance->param(std::string("io-params.") + touch.path);
        EXPECT_TRUE(touched.info()->format.hasItems() ? touched.setString(0, touch.element, "Kick")
                                                      : touched.setElement(0, touch.element, touch.value));
        Strings kept;
        for (const char* const table : tables)
            kept.push_back(m_instance->list(table));
        CWriteSeqBuffer state;
        EXPECT_FALSE(m_instance->saveState(state));
        for (const bool isReloaded : {false, true}) {
            if (isReloaded) {
                SetUp();
                CByteArray bytes;
                state.getContiguous(bytes);
                CMemoryReaderStatic in(bytes.span());
                report({"L", "R"}); // some hosts do so before they bring the state
                EXPECT_FALSE(m_instance->loadState(in));
            }
            report({"M"}, {"M"});
            report({"L", "R", "C", "Lfe", "Ls", "Rs"});
            Strings found;
            for (const char* const table : tables)
                found.push_back(m_instance->list(table));
            EXPECT_EQ(found, kept) << where << (isReloaded ? " reloaded" : "");
        }
    }
}

TEST_F(TestHostParams, ChannelLabelsAreTakenOnRequestAsOneStepOfTheHistory)
{
    const auto steps = [&] {
        CArray<CString> labels;
        std::int32_t position = 0;
        m_instance->interfaceBase().getHistory(labels, position);
        return position;
    };
    EXPECT_TRUE(m_instance->param("io-params.grouping").setElement(0, 3, 0.0));
    report({"L", "R", "C"});
    EXPECT_EQ(m_instance->list("in-channel-names").substr(0, 7), "L,R,IN3");
    const std::int32_t before = steps();
    m_instance->importChannelLabels();
    m_instance->importChannelLabels();
    EXPECT_EQ(m_instance->list("in-channel-names"), "L,R,C");
    EXPECT_EQ(steps(), before + 1);
    m_instance->interfaceBase().setPosition(before);
    EXPECT_EQ(m_instance->list("in-channel-names").substr(0, 7), "L,R,IN3");
}

TEST_F(TestHostParams, WindowHasTheDeclaredSize)
{
    EXPECT_EQ(m_instance->windowWidth(), 746);
    EXPECT_EQ(m_instance->windowHeight(), 662);
    m_instance->setWindowSizeFromHost(900, 900); // this window has one size
    EXPECT_EQ(m_instance->windowWidth(), 746);
}

} // namespace
