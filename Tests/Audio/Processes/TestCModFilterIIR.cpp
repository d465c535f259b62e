// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CFilterBank.h"
#include "Audio/Filters/FilterStageKinds.h"
#include "Tests/Audio/CGraphRig.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>

namespace qrb {
namespace {

using CSignal = std::vector<double>;

constexpr int kFade = 662; // 15 ms at 44100 Hz

const std::string kDesigners = R"(
    <core:object name="flt">
      <audio:fltgen-bypass name="bypass"/>
      <audio:fltgen-rbj name="peak" type="6" is-type2="true"/>
      <audio:fltgen-rbj name="low" type="0" is-type2="true"/>
      <audio:fltgen-array name="array">
        <audio:fltgen-array-item name="i0" fltgen="audio.modMain.flt.bypass" index="0"/>
        <audio:fltgen-array-item name="i1" fltgen="audio.modMain.flt.peak" index="1"/>
        <audio:fltgen-array-item name="i2" fltgen="audio.modMain.flt.low" index="2"/>
      </audio:fltgen-array>
    </core:object>)";

/// The slots stand in another order than the designer's values.
std::string body(int mode, const std::string& attrs = "", const std::string& array = "/audio.modMain.flt.array")
{
    return kDesigners + paramXml("mode", std::to_string(mode)) + paramXml("freq", "1000") + paramXml("gain", "4") +
           paramXml("bw", "1") + "<audio:modFilterIIR name='modFilter' xfade-length='0.015' gen-array='" + array +
           "' " + attrs + R"(>
        <audio:param-alloc name="index" index="0" param-name="^mode" is-smooth-update="true"/>
        <audio:param-alloc name="bw" index="1" param-name="^bw"/>
        <audio:param-alloc name="freq" index="2" param-name="^freq"/>
        <audio:param-alloc name="gain" index="3" param-name="^gain"/>
      </audio:modFilterIIR>)";
}

double noise(int line, int sample)
{
    return std::sin(0.37 * sample * (line + 1)) + 0.25 * std::sin(0.011 * sample);
}

/// Coefficients of the peak, from its formulae.
CAudioFilterStageList peak(double frequency, double gain)
{
    const double w = 2.0 * std::numbers::pi * frequency / 44100.0;
    const double alpha = std::sinh(0.5 * std::numbers::ln2) * std::sin(w);
    const double A = std::sqrt(gain);
    const std::array<double, 3> b = {1.0 + alpha * A, -2.0 * std::cos(w), 1.0 - alpha * A};
    const std::array<double, 3> a = {1.0 + alpha / A, -2.0 * std::cos(w), 1.0 - alpha / A};
    CAudioFilterStageList list;
    list.appendBiquad(EFilterKind::biquad, b, a, nullptr);
    return list;
}

void expectNear(const CSignal& got, const CSignal& want)
{
    ASSERT_EQ(got.size(), want.size());
    for (std::size_t n = 0; n < got.size(); ++n)
        ASSERT_NEAR(got[n], want[n], 1e-12) << n;
}

CSignal input(int from, int count, int line = 0)
{
    CSignal samples;
    for (int n = from; n < from + count; ++n)
        samples.push_back(noise(line, n));
    return samples;
}

CSignal runBank(CFilterBank& bank, CSignal samples)
{
    const double* in[] = {samples.data()};
    double* out[] = {samples.data()};
    bank.run(in, out, samples.size());
    return samples;
}

TEST(CModFilterIIR, KeepsItsSignalWhenValuesChangeAndFadesInsideTheStage)
{
    CGraphRig rig(body(1));
    rig.input = noise;
    CFilterBank bank;
    bank.apply(peak(1000, 4), 44100.0);
    expectNear(rig.run(700).at(0), runBank(bank, input(0, 700)));
    rig.set("freq", 300.0);
    bank.apply(peak(300, 4), 44100.0);
    expectNear(rig.run(500).at(0), runBank(bank, input(700, 500)));
    rig.set("gain", 0.5);
    rig.set("freq", 300.0);
    bank.apply(peak(300, 0.5), 44100.0);
    expectNear(rig.run(3000).at(0), runBank(bank, input(1200, 3000)));
}

TEST(CModFilterIIR, CrossesOverToAnotherDesignerThatStartsAtRest)
{
    CGraphRig rig(body(0));
    rig.input = noise;
    EXPECT_EQ(rig.run(100).at(0), input(0, 100)) << "no filter";
    rig.set("mode", 1.0);
    CFilterBank bank;
    bank.apply(peak(1000, 4), 44100.0);
    const CSignal dry = input(100, 1500);
    CSignal want = runBank(bank, dry);
    for (int n = 0; n < kFade; ++n) {
        const double old = 0.5 + 0.5 * std::cos(std::numbers::pi * n / kFade);
        const auto at = static_cast<std::size_t>(n);
        want[at] = old * dry[at] + (1.0 - old) * want[at];
    }
    expectNear(rig.run(1500).at(0), want);
    rig.set("mode", 7.0);
    (void)rig.run(kFade);
    EXPECT_EQ(rig.run(10).at(0), input(1600 + kFade, 10)) << "past the end of the array";
}

TEST(CModFilterIIR, PassesTheSignalWhereThereIsNothingToDesign)
{
    CGraphRig missing(body(1, "", "nowhere"));
    missing.input = noise;
    EXPECT_EQ(missing.run(50).at(0), input(0, 50));
    EXPECT_EQ(missing.countLogged("The 'gen-array' 'nowhere' not found."), 1);

    CGraphRig rig(body(1));
    rig.input = noise;
    rig.setLines({{0, 0}}, 1500.0); // the peak lies above half of it
    EXPECT_EQ(rig.run(50).at(0), input(0, 50));
    EXPECT_EQ(rig.latency(), 0);
}

TEST(CModFilterIIR, GivesTheSameBitsSideBySideAndAllocatesNothing)
{
    const auto run = [](const std::string& attrs, int block) {
        CGraphRig rig(body(2, attrs));
        rig.input = noise;
        rig.setLines({{0, 0}, {1, 0}, {2, 0}});
        auto out = rig.run(640, block);
        rig.set("freq", 200.0);
        for (auto& [channel, samples] : rig.run(1920, block))
            out[channel].insert(out[channel].end(), samples.begin(), samples.end());
        rig.allocations = 0;
        rig.feedOnly(block);
        EXPECT_EQ(rig.allocations, 0u);
        return out;
    };
    const auto apart = run("", 64);
    EXPECT_EQ(run("is-terminal-whole='true'", 64), apart);
    EXPECT_EQ(run("is-terminal-whole='true'", 5), apart);
}

} // namespace
} // namespace qrb
