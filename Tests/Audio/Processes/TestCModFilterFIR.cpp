// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CAudioFilterGenArray.h"
#include "Tests/Audio/CGraphRig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace qrb {
namespace {

using CSignal = std::vector<double>;

/// One tap: the second of the lists' values, of which there are 2 and 1.
class CListGen : public CAudioFilterGen {
public:
    void design(CAudioFilterStageList& list, double, const CAudioFilterParams& params,
                CDCDAWFilterWorkspace*) const override
    {
        CSignal sizes;
        for (const char* name : {"element-size", "element-count", "element-count2", "element-count3"}) {
            sizes.push_back(-1.0);
            (void)params.get(name, sizes.back());
        }
        EXPECT_EQ(sizes, (CSignal{3, 2, 1, 0}));
        list.appendTaps({*(params.values().end() - 2)});
    }
};

/// `extra`: further allocations.
std::string body(const std::string& attrs, const std::string& extra = "")
{
    const auto alloc = [](const std::string& name, int index) {
        return "<audio:param-alloc name='" + name + "' index='" + std::to_string(index) + "' param-name='^" + name +
               "' use-all-elements='true'/>";
    };
    return R"(<core:object name="flt">
      <audio:fltgen-firlp name="firlp"/>
      <audio:fltgen-lphp1 name="lp1"/>
      <audio:fltgen-array name="array">
        <audio:fltgen-array-item name="i0" fltgen="audio.modMain.flt.firlp" index="0"/>
        <audio:fltgen-array-item name="i1" fltgen="audio.modMain.flt.lp1" index="1"/>
      </audio:fltgen-array></core:object>)" +
           paramXml("count", "1") + paramXml("index", "0") + paramXml("latency", "5") + paramXml("fixsr", "0") +
           paramXml("length", "0.0002") + paramXml("freq", "1000") + paramXml("beta", "8") + paramXml("points", "0") +
           paramXml("points2", "0") + paramXml("points3", "0") +
           "<audio:modFilterFIR name='modFilter' xfade-length='0.01' gen-array='/audio.modMain.flt.array' " + attrs +
           ">" + alloc("count", 0) + alloc("index", 1) + alloc("latency", 2) + alloc("fixsr", 3) + alloc("length", 4) +
           alloc("freq", 5) + alloc("beta", 6) + extra + "</audio:modFilterFIR>";
}

double noise(int line, int sample)
{
    return std::sin(0.37 * sample * (line + 1)) + 0.25 * std::cos(0.011 * sample * sample);
}

CSignal tapsOf(CGraphRig& rig, double frequency, double sampleRate = 44100.0)
{
    const CObject* designer = rig.main().definition().findObject("/audio.modMain.flt.firlp");
    CAudioFilterParams params;
    params.set("length", 0.0002);
    params.set("freq", frequency);
    params.set("beta", 8.0);
    CAudioFilterStageList list;
    dynamic_cast<const CAudioFilterGen&>(*designer).design(list, sampleRate, params, nullptr);
    const auto taps = list.stages()[0].b.span();
    return {taps.begin(), taps.end()};
}

/// Samples of the line from `from` on against the definition; before time 0 all are like the first.
void expectConvolved(const CSignal& got, const CSignal& taps, int from, int late, int line = 0)
{
    for (std::size_t n = 0; n < got.size(); ++n) {
        double sum = 0.0;
        for (std::size_t k = 0; k < taps.size(); ++k)
            sum += taps[k] * noise(line, std::max(from + static_cast<int>(n) - late - static_cast<int>(k), 0));
        ASSERT_NEAR(got[n], sum, 1e-12) << n;
    }
}

TEST(CModFilterFIR, ConvolvesAllLinesAndTellsItsLatency)
{
    for (const std::string whole : {"", "is-terminal-whole='true'"}) {
        for (const bool isZeroLatency : {false, true}) {
            CGraphRig rig(body(isZeroLatency ? whole + " is-zero-latency='true'" : whole));
            rig.input = noise;
            rig.setLines({{0, 0}, {1, 0}});
            const auto out = rig.run(400);
            const CSignal taps = tapsOf(rig, 1000);
            ASSERT_EQ(taps.size(), 97u);
            for (int line = 0; line < 2; ++line)
                expectConvolved(out.at(line), taps, 0, isZeroLatency ? 0 : 32, line);
            EXPECT_EQ(rig.latency(), isZeroLatency ? 48 : 48 + 32);
            rig.allocations = 0;
            rig.feedOnly(64);
            EXPECT_EQ(rig.allocations, 0u);
        }
    }
}

TEST(CModFilterFIR, DesignsEachElementFromItsOwnValuesAtItsOwnRate)
{
    CGraphRig rig(body("is-zero-latency='true'"));
    rig.input = noise;
    rig.setLines({{0, 0}}, 96000.0);
    rig.set("count", 3.0);
    rig.set("index", 9.0, 0, 0); // past the end of the array
    rig.set("index", 1.0, 0, 1); // nothing finite
    rig.set("index", 0.0, 0, 2);
    rig.set("freq", 500.0, 0, 2);
    expectConvolved(rig.run(300).at(0), tapsOf(rig, 500, 96000), 0, 0);
    rig.set("fixsr", 1.0, 0, 2);
    rig.reset();
    const CSignal fixed = tapsOf(rig, 500);
    (void)rig.run(300);
    expectConvolved(rig.run(300).at(0), fixed, 600, 0);
}

TEST(CModFilterFIR, PassesTheSignalWhereThereIsNotOneFiniteStage)
{
    CGraphRig rig(body(""));
    rig.input = noise;
    const auto expectPassed = [&](int from) {
        const CSignal got = rig.run(100).at(0);
        for (int n = 0; n < 100; ++n)
            ASSERT_EQ(got[static_cast<std::size_t>(n)], noise(0, from + n));
        EXPECT_EQ(rig.latency(), 0);
    };
    rig.set("index", 1.0);
    expectPassed(0);
    rig.set("index", -1.0);
    expectPassed(100);
    rig.set("index", 0.0);
    rig.set("count", 2.0);
    expectPassed(200);
    EXPECT_EQ(rig.countLogged("FIR filter combining was not implemented yet! // plugin.modMain.modFilter"), 1);
    rig.set("count", 1e9);
    expectPassed(300);
    rig.set("count", 1.0);
    (void)rig.run(1);
    EXPECT_EQ(rig.latency(), 80);
}

TEST(CModFilterFIR, PassesTheSignalWithoutAnArray)
{
    CGraphRig rig("<audio:modFilterFIR name='modFilter' gen-array='nowhere'/>");
    EXPECT_EQ(rig.run(10).at(0), CSignal(10, 1.0));
    EXPECT_EQ(rig.countLogged("The 'gen-array' 'nowhere' not found."), 1);
}

TEST(CModFilterFIR, HandsListsOfValuesToTheDesigner)
{
    CGraphRig rig(body("is-zero-latency='true'",
                       "<audio:param-alloc name='points' index='7' param-name='^points' use-all-elements='true'/>"
                       "<audio:param-alloc name='points2' index='8' param-name='^points2' use-all-elements='true'/>"));
    const CObject* array = rig.main().definition().findObject("/audio.modMain.flt.array");
    const CListGen gen;
    const_cast<CAudioFilterGenArray&>(dynamic_cast<const CAudioFilterGenArray&>(*array)).set(2, gen);
    rig.set("points", 0.5, 0, 0);
    rig.set("points", -0.25, 0, 1);
    rig.set("points2", 7.0, 0, 0);
    rig.set("index", 2.0);
    EXPECT_EQ(rig.run(20).at(0), CSignal(20, -0.25));
}

TEST(CModFilterFIR, CrossesOverToNewValues)
{
    CGraphRig rig(body("is-smooth-update='true'"));
    rig.input = noise;
    (void)rig.run(500);
    rig.set("latency", 7.0);
    rig.set("freq", 800.0);
    (void)rig.run(1500);
    expectConvolved(rig.run(200).at(0), tapsOf(rig, 800), 2000, 128);
    EXPECT_EQ(rig.latency(), 60 + 128);
}

TEST(CModFilterFIR, GoesOnWhereValuesOfOtherElementsChange)
{
    CGraphRig rig(body(""));
    rig.input = noise;
    (void)rig.run(500);
    rig.set("freq", 300.0, 0, 1);
    expectConvolved(rig.run(200).at(0), tapsOf(rig, 1000), 500, 32);
}

} // namespace
} // namespace qrb
