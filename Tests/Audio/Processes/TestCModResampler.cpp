// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessComposite.h"
#include "Audio/Filters/CFilterBank.h"
#include "Audio/Processes/RateMath.h"
#include "Tests/Audio/BandDocs.h"
#include "Tests/Audio/CGraphRig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <numbers>

namespace qrb {

namespace {

using CSignal = std::vector<double>;

constexpr double kRate = 44100.0;

std::string filterTemplate(const std::string& name, const std::string& halfBand, const std::string& length,
                           const std::string& frequency, const std::string& beta, const std::string& attrs = "")
{
    std::string xml = "<audio:modProcessSwitch name='" + name +
                      "' def-child-name='mod' process-list='0:.flt1;1:.flt2'>"
                      "<audio:param-alloc name='index' index='0' param-name='/plugin.modMain.lp'/>" +
                      "<audio:modFilterIIR name='flt1' gen-array='audio.fltarray." + halfBand + "'>" +
                      paramXml("index", "0", "") +
                      "<audio:param-alloc name='index' index='0' param-name='index'/></audio:modFilterIIR>"
                      "<audio:modFilterFIR name='flt2' gen-array='audio.fltarray.firlp' xfade-length='0.015' "
                      "is-smooth-update='true' " +
                      attrs + ">" + frequencyXml(frequency) + paramXml("length", length, "") +
                      paramXml("beta", beta, "") + paramXml("fixsr", "1", "");
    int index = 0;
    for (const std::string slot : {"fixsr", "length", "freq", "beta"})
        xml += "<audio:param-alloc name='" + slot + "' index='" + std::to_string(index++) + "' param-name='" + slot +
               "'/>";
    return xml + "</audio:modFilterFIR></audio:modProcessSwitch>";
}

std::string arrayXml(const std::string& name, const std::string& designer)
{
    return "<audio:fltgen-array name='" + name + "'><audio:fltgen-array-item name='i' index='0' fltgen='audio.flt." +
           designer + "'/></audio:fltgen-array>";
}

std::string templates()
{
    return "<core:object name='flt'><audio:fltgen-firlp name='firlp'/>"
           "<audio:fltgen-hbf name='hbf106t20' "
           "a='0.0358327884310621,0.27204014339645771,0.572057197235700250,0.82712476199732377' "
           "b='0.13409014194306693,0.42432487127186835,0.706292142138639220,0.94150309417375522'/>"
           "<audio:fltgen-hbf name='hbf116t4' a='0.042454709865267684,0.39331989319032801' "
           "b='0.17073985049749907,0.74571358872022298'/></core:object><core:object name='fltarray'>" +
           arrayXml("firlp", "firlp") + arrayXml("steep", "hbf106t20") + arrayXml("soft", "hbf116t4") +
           "</core:object><audio:modInterpolator name='modUpsamplerInterpolator'/>"
           "<audio:modDecimator name='modDownsamplerDecimator'/>" +
           filterTemplate("modUpsamplerFilterSteep", "steep", "0.008", "10650", "16") +
           filterTemplate("modDownsamplerFilterSteep", "steep", "0.023", "11000", "16") +
           filterTemplate("modResamplerFilterSoft", "soft", "0.00081", "10200", "16.3", "is-zero-latency='true'");
}

std::string resampler(const std::string& name, const std::string& attrs)
{
    return "<audio:modResampler name='" + name + "' " + attrs +
           "><audio:param-alloc name='mode' index='0' param-name='^mode'/>"
           "<audio:param-alloc name='host-mode' index='1' param-name='^host-mode'/></audio:modResampler>";
}

const std::string kParams = paramXml("mode", "1") + paramXml("host-mode", "0") + paramXml("lp", "1");
const std::string kUp = resampler("up", "is-upsampler='true'");
const std::string kDown = resampler("down", "");

struct CResampleRig : CGraphRig {
    CResampleRig(const std::string& nodes, int mode, bool isLinearPhase)
        : CGraphRig(kParams + nodes, "is-auto-links='true'", templates())
    {
        set("mode", mode);
        set("lp", isLinearPhase ? 1.0 : 0.0);
    }
    std::string order(const char* name)
    {
        std::string names;
        const auto& node = dynamic_cast<CAudioProcessComposite&>(*main().findNode(name));
        for (const CAudioProcessBase* inner : node.sequence())
            names += (names.empty() ? "" : " ") + inner->fullName().toUtf8().substr(node.fullName().length() + 1);
        return names;
    }
};

CAudioFilterStageList halfBandDesign(bool isSteep)
{
    CAudioFilterStageList list;
    if (isSteep)
        list.append(static_cast<EFilterKind>(4),
                    std::array{0.0358327884310621, 0.27204014339645771, 0.572057197235700250, 0.82712476199732377},
                    std::array{0.13409014194306693, 0.42432487127186835, 0.706292142138639220, 0.94150309417375522},
                    nullptr);
    else
        list.append(static_cast<EFilterKind>(2), std::array{0.042454709865267684, 0.39331989319032801},
                    std::array{0.17073985049749907, 0.74571358872022298}, nullptr);
    return list;
}

CGraphRig::FInput sine(double frequency, double sampleRate)
{
    return [w = 2.0 * std::numbers::pi * frequency / sampleRate](int, int sample) { return std::sin(w * sample); };
}

/// Amplitude at a frequency in the last `count` samples, of which it makes whole periods.
double amplitude(const CSignal& samples, double frequency, double sampleRate, std::size_t count)
{
    std::complex<double> sum = 0.0;
    for (std::size_t n = 0; n < count; ++n)
        sum += samples[samples.size() - count + n] *
               std::polar(1.0, -2.0 * std::numbers::pi * frequency / sampleRate * static_cast<double>(n));
    return 2.0 * std::abs(sum) / static_cast<double>(count);
}

} // namespace

TEST(CModResampler, ImagesAndAliasesAreBelowHearing)
{
    constexpr double kTone = 19000.0;
    for (const bool isLinearPhase : {true, false}) {
        const double limit = isLinearPhase ? 1e-6 : std::pow(10.0, -104.0 / 20.0);
        for (const int mode : {2, 3, 4}) {
            const int factor = 1 << (mode - 1);
            const double highRate = kRate * factor;
            const auto whole = static_cast<std::size_t>(4410 * factor);
            {
                CResampleRig up(kUp, mode, isLinearPhase);
                up.input = sine(kTone, kRate);
                const CSignal out = up.run(8820, 512).at(0);
                ASSERT_EQ(out.size(), static_cast<std::size_t>(8820 * factor));
                EXPECT_NEAR(amplitude(out, kTone, highRate, whole), 1.0, 2e-5);
                for (int k = 1; k <= factor / 2; ++k)
                    for (const double image : {k * kRate - kTone, k * kRate + kTone})
                        if (image < 0.5 * highRate) {
                            EXPECT_LT(amplitude(out, image, highRate, whole), limit) << image << " Hz, mode " << mode;
                        }
            }
            for (const double above : {kRate - kTone, 0.5 * highRate - 5000.0}) {
                CResampleRig down(kDown, mode, isLinearPhase);
                down.setLines({{0, 0}}, highRate);
                down.input = sine(above, highRate);
                const CSignal out = down.run(8820 * factor, 512).at(0);
                ASSERT_EQ(out.size(), 8820u);
                const double folded = std::abs(above - kRate * std::round(above / kRate));
                EXPECT_LT(amplitude(out, folded, kRate, 4410), limit) << above << " Hz, mode " << mode;
            }
        }
    }
}

TEST(CModResampler, LatencyIsWholeInSamplesOfTheHost)
{
    const std::string delay = "<audio:modDelay name='gate' latency='0.005' is-latency-seconds='true'/>";
    const auto latency = [](const std::string& nodes, int mode, bool isLinearPhase) {
        CResampleRig rig(nodes, mode, isLinearPhase);
        (void)rig.run(1);
        return rig.latency();
    };
    for (const int mode : {1, 2, 3, 4}) {
        const int index = mode - 1;
        EXPECT_EQ(latency(kUp + kDown, mode, true), (std::array{0, 473, 483, 488}[static_cast<std::size_t>(index)]));
        EXPECT_EQ(latency(kUp + delay + kDown, mode, true),
                  (std::array{221, 694, 703, 708}[static_cast<std::size_t>(index)]));
        EXPECT_EQ(latency(kUp + kDown, mode, false), 0);
    }
}

TEST(CModResampler, StagesComeAndGoAtTheFarEnd)
{
    CResampleRig rig(kUp + kDown, 4, false);
    (void)rig.run(64);
    EXPECT_EQ(rig.order("up"), "modInterpInterp0 modFilter0 modInterpInterp1 modFilter1 modInterpInterp2 modFilter2");
    EXPECT_EQ(rig.order("down"), "modFilter2 modInterpDecim2 modFilter1 modInterpDecim1 modFilter0 modInterpDecim0");
    const auto sequence = [&](const char* name) {
        return dynamic_cast<CAudioProcessComposite&>(*rig.main().findNode(name)).sequence();
    };
    const CAudioProcessBase* steep = sequence("up")[1];
    const CAudioProcessBase* last = sequence("down")[5];
    rig.set("mode", 2.0);
    rig.set("host-mode", 3.0);
    (void)rig.run(64);
    EXPECT_EQ(rig.order("up"), "modInterpInterp0 modFilter0") << "the host's mode counts in mode 0 alone";
    EXPECT_EQ(rig.order("down"), "modFilter0 modInterpDecim0");
    EXPECT_EQ(sequence("up")[1], steep);
    EXPECT_EQ(sequence("down")[1], last);
    rig.set("mode", 0.0);
    EXPECT_EQ(rig.run(64).at(0).size(), 64u);
    EXPECT_EQ(sequence("up").size(), 6u);
    rig.set("host-mode", 0.0);
    rig.input = sine(1000, kRate);
    EXPECT_EQ(rig.run(1).at(0).front(), rig.input(0, 192)) << "no stage, no copy";
    for (const double mode : {-3.0, 99.0, 1e300}) {
        rig.set("mode", mode);
        EXPECT_EQ(rig.run(7).at(0).size(), 7u);
    }
}

TEST(CModResampler, BlocksAllocateNothingAndTheirCutsAreNotHeard)
{
    std::map<int, CSignal> reference;
    for (const int block : {64, 1, 17, 512}) {
        CResampleRig rig(kUp + kDown, 3, true);
        rig.setLines({{0, 0}, {4, 1}});
        rig.input = [](int line, int sample) { return std::sin(0.37 * sample * (line + 1)); };
        std::map<int, CSignal> out;
        const auto append = [&](int count) {
            for (const auto& [channel, samples] : rig.run(count, block))
                out[channel].insert(out[channel].end(), samples.begin(), samples.end());
        };
        (void)rig.run(1);
        append(1500);
        rig.set("mode", 4.0);
        append(777);
        rig.set("lp", 0.0);
        append(300);
        rig.set("mode", 2.0);
        append(1000);
        if (reference.empty())
            reference = out;
        EXPECT_TRUE(out == reference) << "blocks of " << block;
        rig.set("mode", 4.0);
        rig.set("lp", 1.0);
        for (int i = 0; i < 8; ++i)
            rig.feedOnly(block);
        rig.allocations = 0;
        for (int i = 0; i < 8; ++i)
            rig.feedOnly(block);
        EXPECT_EQ(rig.allocations, 0u);
    }
}

TEST(CModResampler, RecursiveStagesAreFiltersBetweenZerosAndDrops)
{
    for (const int late : {0, 1}) {
        for (const int mode : {2, 3, 4}) {
            const std::string delay = "<audio:modDelay name='delay' latency='" + std::to_string(late) + "'/>";
            CResampleRig rig(kUp + delay + kDown, mode, false);
            rig.setLines({{0, 0}, {1, 0}, {2, 0}});
            rig.input = [](int line, int sample) {
                return std::sin(0.37 * sample * (line + 1)) * std::exp(-0.01 * sample);
            };
            const auto out = rig.run(700, 64);
            for (const auto& [channel, samples] : out) {
                CSignal want;
                for (int n = 0; n < 700; ++n)
                    want.push_back(rig.input(channel, n));
                std::vector<CFilterBank> banks(2 * static_cast<std::size_t>(mode - 1));
                for (std::size_t i = 0; i < banks.size(); ++i)
                    banks[i].apply(halfBandDesign(i == 0 || i + 1 == banks.size()), kRate);
                for (std::size_t i = 0; i < banks.size(); ++i) {
                    const bool isUp = i < banks.size() / 2;
                    CSignal high(want.size() * 2);
                    if (isUp)
                        stuffZeros(want, high);
                    else
                        high = want;
                    double* line = high.data();
                    banks[i].run(&line, &line, high.size());
                    // The delay itself, and at each fall the sample that makes the latency even.
                    if (late != 0 && i + 1 >= banks.size() / 2) {
                        high.insert(high.begin(), 0.0);
                        high.pop_back();
                    }
                    want = high;
                    if (!isUp) {
                        want.resize(high.size() / 2);
                        takeEverySecond(high, want);
                    }
                }
                for (std::size_t n = 0; n < want.size(); ++n)
                    ASSERT_NEAR(samples[n], want[n], 1e-14)
                        << "mode " << mode << ", delay " << late << ", sample " << n;
            }
        }
    }
}

TEST(CModResampler, SamplesThatNobodyHeardComeBackTheSameHoweverBlocksAreCut)
{
    const std::string delays = "<audio:modProcessSwitch name='delay' process-list='0:.even;1:.odd'>"
                               "<audio:param-alloc name='index' index='0' param-name='^late'/>"
                               "<audio:modDelay name='even' latency='2'/><audio:modDelay name='odd' latency='3'/>"
                               "</audio:modProcessSwitch>";
    for (const bool isLinearPhase : {false, true}) {
        CSignal reference;
        for (const int block : {64, 1, 17, 512}) {
            CResampleRig rig(paramXml("late", "0") + kUp + delays + kDown, 3, isLinearPhase);
            rig.input = [](int line, int sample) { return std::sin(0.37 * sample * (line + 1)); };
            CSignal out;
            for (const double late : {0.0, 1.0, 0.0, 1.0}) {
                rig.set("late", late);
                for (const int count : {301, 1}) { // the second one ends in a block of its own
                    const CSignal part = rig.run(count, block).at(0);
                    out.insert(out.end(), part.begin(), part.end());
                }
            }
            if (reference.empty())
                reference = out;
            const auto differing = std::ranges::mismatch(out, reference);
            EXPECT_EQ(differing.in1, out.end())
                << "linear " << isLinearPhase << ", blocks of " << block << ", sample " << differing.in1 - out.begin();
        }
    }
}

TEST(CModResampler, WhatIsMissingIsTold)
{
    CGraphRig rig(kParams + kUp);
    (void)rig.run(2);
    EXPECT_TRUE(std::ranges::any_of(rig.logLines(), [](const std::string& line) {
        return line.find("Unable to find object 'shared::audio.modUpsamplerInterpolator'") != line.npos;
    }));
}

} // namespace qrb
