// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessMB.h"
#include "Tests/Audio/BandDocs.h"
#include "Tests/Audio/CGraphRig.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>

namespace qrb {

namespace {

using CSignal = std::vector<double>;

CAudioProcessMB& bandsOf(CGraphRig& rig, const char* name = "mb")
{
    return dynamic_cast<CAudioProcessMB&>(*rig.main().findNode(name));
}

/// Names below the node, in the order they run.
std::string order(CGraphRig& rig)
{
    std::string names;
    const CAudioProcessMB& node = bandsOf(rig);
    for (const CAudioProcessBase* inner : node.sequence())
        names += (names.empty() ? "" : " ") + inner->fullName().toUtf8().substr(node.fullName().length() + 1);
    return names;
}

const std::string kSingle = "is-single-element='true'"; // the filters of all splits read one value
const std::string kSplits = frequencyXml("100,1000,5000") + paramXml("band-count", "1") +
                            paramXml("type", "2", kSingle) + paramXml("xo-count", "2", kSingle);
const std::string kLevels = paramXml("level", "1,1,1,1");

/// A crossover around `body`, whose input goes to all three ports.
std::string crossover(const std::string& body, const std::string& attrs = "is-auto-links='true'")
{
    return "<audio:process-def name='mb' " + kCrossoverAttrs + attrs + ">" + kSplits + crossoverPrototypesXml() + body +
           "</audio:process-def><audio:process-link name='l' src='*' dst='mb'/>"
           "<audio:process-link name='l' src='*' dst='mb/1'/><audio:process-link name='l' src='*' dst='mb/2'/>"
           "<audio:process-link name='l' src='mb' dst='*'/>";
}

/// Passes the audio; `mix` blends port 1 or 2 in.
std::string mixBody(int port)
{
    return "<audio:modMix name='m' xfade-length='0.015'><audio:param-alloc name='a' index='0' param-name='^^mix'/>"
           "</audio:modMix><audio:process-link name='l' src='*/" +
           std::to_string(port) + "' dst='m/1'/>" + paramXml("mix", "0");
}

struct CSplitRig : CGraphRig {
    explicit CSplitRig(const std::string& body, const std::string& attrs = "is-auto-links='true'")
        : CGraphRig(kLevels + crossover(body, attrs), "", crossoverDesignersXml())
    {
    }
    void split(int type, const CSignal& frequencies)
    {
        set("mb.type", type);
        set("mb.xo-count", static_cast<double>(frequencies.size()));
        set("mb.band-count", static_cast<double>(frequencies.size() + 1));
        for (std::size_t i = 0; i < frequencies.size(); ++i)
            set("mb.freq", frequencies[i], 0, static_cast<int>(i));
    }
};

double noise(int line, int sample)
{
    return std::sin(0.37 * sample * (line + 1)) + 0.25 * std::sin(0.011 * sample);
}

double decibels(const CSignal& response, double frequency, double sampleRate)
{
    std::complex<double> sum = 0.0;
    const std::complex<double> step = std::polar(1.0, -2.0 * std::numbers::pi * frequency / sampleRate);
    for (auto sample = response.rbegin(); sample != response.rend(); ++sample)
        sum = sum * step + *sample;
    return 20.0 * std::log10(std::abs(sum));
}

const std::string kPassing = probeXml("p", "^^^level");

} // namespace

TEST(CAudioProcessMB, BandsSumFlatWhereverTheSplitsLie)
{
    const std::vector<CSignal> splits = {{},         {20},        {1000},       {21900},      {60, 70},
                                         {300, 300}, {20, 20000}, {5000, 9000}, {100, 21000}, {500, 30000}};
    for (const double sampleRate : {44100.0, 192000.0}) {
        for (int type = 0; type < 3; ++type) {
            for (const CSignal& frequencies : splits) {
                CSplitRig rig(kPassing);
                rig.setLines({{0, 0}}, sampleRate);
                rig.split(type, frequencies);
                rig.input = [](int, int sample) { return sample == 0 ? 1.0 : 0.0; };
                const CSignal response = rig.run(static_cast<int>(sampleRate), 4096).at(0);
                for (double f = 10.0; f < 0.49 * sampleRate; f *= 1.37)
                    ASSERT_NEAR(decibels(response, f, sampleRate), 0.0, 0.001)
                        << "type " << type << ", " << frequencies.size() << " splits, at " << f << " Hz";
            }
        }
    }
}

TEST(CAudioProcessMB, ABandHoldsWhatItsSlopesLeave)
{
    // A fourth-order split is at -6 dB, a first-order one at -3 dB; an octave off the steep one is below -24 dB.
    CSplitRig rig(probeXml("p", "^^^level"));
    rig.set("level", 0.0, 0, 1);
    rig.split(2, {1000});
    rig.input = [](int, int sample) { return sample == 0 ? 1.0 : 0.0; };
    const CSignal low = rig.run(8192).at(0);
    EXPECT_NEAR(decibels(low, 1000, 44100), -6.0206, 0.01);
    EXPECT_NEAR(decibels(low, 50, 44100), 0.0, 0.001);
    EXPECT_LT(decibels(low, 2000, 44100), -24.0);
}

TEST(CAudioProcessMB, KeyAndDryAreSplitLikeTheAudio)
{
    for (const int port : {1, 2}) {
        for (const double mix : {0.5, 1.0}) {
            CSplitRig plain(mixBody(port));
            CSplitRig mixed(mixBody(port));
            mixed.set("mb.mix", mix);
            for (CSplitRig* rig : {&plain, &mixed}) {
                rig->setLines({{0, 0}, {3, 0}});
                rig->split(1, {200, 2000});
                rig->input = noise;
            }
            const auto want = plain.run(600);
            const auto got = mixed.run(600);
            ASSERT_EQ(got.size(), 2u);
            for (const auto& [channel, samples] : want)
                for (std::size_t n = 0; n < samples.size(); ++n)
                    ASSERT_NEAR(got.at(channel)[n], samples[n], 1e-13) << "port " << port << ", channel " << channel;
        }
    }
}

TEST(CAudioProcessMB, FiltersComeAndGoWithTheBands)
{
    CGraphRig rig(kLevels + "<audio:process-def name='mb' " + kCrossoverAttrs + "is-auto-links='true'>" + kSplits +
                      crossoverPrototypesXml() + kPassing + "</audio:process-def>",
                  "is-auto-links='true'", crossoverDesignersXml());
    (void)rig.run(1);
    EXPECT_EQ(order(rig), "mod");
    rig.set("mb.band-count", 3.0);
    (void)rig.run(1);
    EXPECT_EQ(order(rig), "lp#0-0 hp#0-0 pre#0-0 mod lp#1-0 hp#1-0 pre#1-0 mod#1 mod#2");
    CAudioProcessBase* highPass = bandsOf(rig).sequence()[1];
    const CAudioProcessBase* body = bandsOf(rig).sequence()[7];

    rig.set("mb.band-count", 2.0);
    (void)rig.run(1);
    EXPECT_EQ(order(rig), "lp#0-0 hp#0-0 pre#0-0 mod mod#1");
    EXPECT_EQ(bandsOf(rig).sequence()[1], highPass);
    EXPECT_EQ(bandsOf(rig).sequence()[4], body);
    EXPECT_EQ(highPass->output().lines().size(), 1u);

    // A frequency that moves among its neighbours touches no wire; one that passes them does.
    rig.set("mb.freq", 700.0, 0, 0);
    (void)rig.run(1);
    EXPECT_EQ(bandsOf(rig).sequence()[1], highPass);
    rig.set("mb.band-count", 4.0);
    rig.set("mb.freq", 500.0, 0, 2);
    (void)rig.run(1);
    EXPECT_EQ(bandsOf(rig).bands().size(), 3u); // 700, 1000, 500
    rig.set("mb.freq", 22050.0, 0, 1);
    (void)rig.run(1);
    EXPECT_EQ(bandsOf(rig).bands().size(), 2u);
    rig.setLines({{0, 0}}, 88200.0);
    (void)rig.run(1);
    EXPECT_EQ(bandsOf(rig).bands().size(), 3u) << "half the rate lies higher now";
    for (const double count : {0.0, -1e300, std::nan("")}) {
        rig.set("mb.band-count", count);
        (void)rig.run(1);
        EXPECT_EQ(bandsOf(rig).bands().size(), 1u);
    }
}

TEST(CAudioProcessMB, BodiesReadTheirBandAndTheirGroup)
{
    // Without filters every band takes the input as it is.
    const std::string body = frequencyXml("100,200") + paramXml("count", "1;3") + paramXml("level", "2,3,5;20,30,50") +
                             paramXml("latency", "0,7,3") +
                             "<test:modProbe name='mb' is-stacked='true' is-multiband='true' "
                             "multiband-freq-param='^freq' multiband-count-param='^count'>"
                             "<audio:param-alloc name='a' index='0' param-name='^^level'/>"
                             "<audio:param-alloc name='b' index='1' param-name='^^latency'/></test:modProbe>";
    CGraphRig rig(body);
    rig.setLines({{0, 0}, {1, 1}});
    rig.input = [](int, int sample) { return sample == 0 ? 1.0 : 0.0; };
    const auto out = rig.run(16);
    EXPECT_EQ(rig.latency(), 7);
    const auto at = [&](int channel) {
        std::map<int, double> found;
        for (int n = 0; n < 16; ++n)
            if (out.at(channel)[static_cast<std::size_t>(n)] != 0.0)
                found[n] = out.at(channel)[static_cast<std::size_t>(n)];
        return found;
    };
    // A probe tells of a latency that it does not have: each band is delayed by what it lacks of the longest.
    EXPECT_EQ(at(0), (std::map<int, double>{{7, 2.0}}));
    EXPECT_EQ(at(1), (std::map<int, double>{{0, 30.0}, {4, 50.0}, {7, 20.0}}));
}

TEST(CAudioProcessMB, LinesAndPortsThatComeLateAreSplitToo)
{
    const std::string body = "<audio:process-bypass-state name='s' id='1' param='off' value='1'/>" +
                             paramXml("off", "1") + kLevels + "<audio:process-def name='mb' " + kCrossoverAttrs +
                             "is-auto-links='true'>" + kSplits + crossoverPrototypesXml() + mixBody(2) +
                             "</audio:process-def>"
                             "<audio:process-link name='l' src='*' dst='mb/2' bypass-state-id='1'/>"
                             "<audio:process-link name='l' src='*' dst='mb'/>"
                             "<audio:process-link name='l' src='mb' dst='*'/>";
    CGraphRig rig(body, "", crossoverDesignersXml());
    rig.set("mb.band-count", 2.0);
    (void)rig.run(64);
    EXPECT_EQ(order(rig), "lp#0-0 hp#0-0 pre#0-0 mod mod#1");
    rig.set("off", 0.0);
    rig.setLines({{0, 0}, {5, 0}});
    EXPECT_EQ(rig.run(64).size(), 2u);
    EXPECT_EQ(order(rig), "lp#0-0 hp#0-0 pre#0-0 lp#0-2 hp#0-2 pre#0-2 mod mod#1");
    EXPECT_EQ(bandsOf(rig).bands()[1]->body->lines(2).size(), 2u);
    rig.set("off", 1.0);
    (void)rig.run(64);
    EXPECT_EQ(order(rig), "lp#0-0 hp#0-0 pre#0-0 mod mod#1");
    EXPECT_TRUE(bandsOf(rig).bands()[1]->body->lines(2).empty());
}

TEST(CAudioProcessMB, BlocksAllocateNothingAndTheirCutsAreNotHeard)
{
    std::map<int, CSignal> reference;
    for (const int block : {64, 1, 17, 512}) {
        CSplitRig rig(mixBody(2));
        rig.setLines({{0, 0}, {1, 0}});
        rig.input = noise;
        std::map<int, CSignal> out;
        const auto append = [&](int count) {
            for (const auto& [channel, samples] : rig.run(count, block))
                out[channel].insert(out[channel].end(), samples.begin(), samples.end());
        };
        (void)rig.run(1);
        rig.split(2, {150, 3000});
        append(1500);
        rig.set("mb.freq", 900.0, 0, 0);
        rig.set("mb.mix", 0.7);
        append(100);
        rig.split(1, {900, 3000});
        append(333);
        rig.split(1, {500});
        append(3000);
        if (reference.empty())
            reference = out;
        EXPECT_TRUE(out == reference) << "blocks of " << block;
        rig.allocations = 0;
        for (int i = 0; i < 8; ++i) {
            rig.feedOnly(block);
            if (i == 3)
                rig.set("mb.freq", 510.0, 0, 0);
        }
        EXPECT_EQ(rig.allocations, 0u);
    }
}

TEST(CAudioProcessMB, IncompleteDefinitionsAreTold)
{
    const auto countLogged = [](const std::string& attrs, const std::string& text) {
        CGraphRig rig("<test:modProbe name='mb' is-multiband='true' " + attrs + "/>");
        (void)rig.run(2);
        return std::ranges::count_if(rig.logLines(), [&](const auto& line) { return line.find(text) != line.npos; });
    };
    EXPECT_EQ(countLogged("multiband-count-param='c'", "No 'multiband-freq-param' attribute defined."), 1);
    EXPECT_EQ(countLogged("multiband-freq-param='f'", "No 'multiband-count-param' attribute defined."), 1);
    EXPECT_EQ(countLogged("multiband-freq-param='f' multiband-count-param='c' multiband-lp='.no'",
                          "Unable to find object '.no'"),
              1);
}

} // namespace qrb
