// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Product/CProductRig.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>

namespace {

const std::string kGroup = "modThumpcraft.";

CChannels makeSine(double frequency, double amplitude, std::size_t frames, double rate = 44100.0)
{
    std::vector<double> samples(frames);
    for (std::size_t n = 0; n < frames; ++n)
        samples[n] = amplitude * std::sin(2.0 * std::numbers::pi * frequency / rate * static_cast<double>(n));
    return {samples, samples};
}

double rms(const std::vector<double>& samples, std::size_t from)
{
    double sum = 0.0;
    for (std::size_t n = from; n < samples.size(); ++n)
        sum += samples[n] * samples[n];
    return std::sqrt(sum / static_cast<double>(samples.size() - from));
}

double decibels(double ratio)
{
    return 20.0 * std::log10(ratio);
}

/// Everything is on and works hard, each band with its own values.
void setEverything(CProductRig& rig)
{
    rig.set(kGroup + "gate-enable=1").set(kGroup + "gate-threshold=-30").set(kGroup + "clip-enable=1");
    for (int band = 0; band < 3; ++band) {
        const std::string place = ":0:" + std::to_string(band) + "=";
        rig.set(kGroup + "comp-enable" + place + "1").set(kGroup + "sat-enable" + place + "1");
        rig.set(kGroup + "comp-threshold" + place + std::to_string(-30 + 5 * band));
        rig.set(kGroup + "sat-drive" + place + std::to_string(3 * band));
    }
    for (int filter = 0; filter < 5; ++filter) {
        const std::string place = ":0:" + std::to_string(filter) + "=";
        rig.set(kGroup + "eq-params.mode" + place + std::to_string(filter % 3 + 1));
        rig.set(kGroup + "eq-params.gain" + place + (filter % 2 == 0 ? "4" : "-3"));
    }
}

class TestWholePath : public testing::TestWithParam<double> {};

TEST_P(TestWholePath, KeepsItsPromisesInEverySettingOfTheResamplers)
{
    const double rate = GetParam();
    const CChannels in = makeNoise(2, 3000);
    for (int oversampling = 1; oversampling <= 4; ++oversampling)
        for (const char* filters : {"0", "1"}) {
            CChannels whole;
            for (const std::size_t blockSize : {3000u, 512u, 64u, 17u}) {
                CProductRig rig({rate, 2, 2, 0, 3});
                setEverything(rig);
                rig.set("oversampling=" + std::to_string(oversampling))
                    .set(std::string("lp-oversampling-enable=") + filters);
                const CChannels out = rig.run(in, blockSize);
                ASSERT_EQ(rig.latency(), promisedLatency(rate)) << oversampling << " " << filters;
                for (const std::vector<double>& channel : out)
                    for (const double sample : channel)
                        ASSERT_TRUE(std::abs(sample) <= 2.0) << oversampling << " " << filters;
                if (whole.empty())
                    whole = out;
                ASSERT_EQ(out, whole) << "oversampling " << oversampling << ", filters " << filters << ", blocks of "
                                      << blockSize;
            }
        }
}

INSTANTIATE_TEST_SUITE_P(Rates, TestWholePath, testing::Values(44100.0, 48000.0, 88200.0, 96000.0, 176400.0, 192000.0));

TEST(TestSignalPath, BandsAddUpAndADryMixOfTheSameChangesNothing)
{
    for (const char* type : {"0", "1", "2"}) {
        const CChannels in = makeNoise(2, 40000);
        CProductRig rig({44100.0, 2, 2, 0, 3});
        const std::vector<double> wet = rig.set(kGroup + "xo-type=" + type).run(in, 512)[0];
        EXPECT_NEAR(decibels(rms(wet, 2000) / rms(in[0], 2000)), 0.0, 0.1) << type;
        CProductRig mixed({44100.0, 2, 2, 0, 3});
        const CChannels half = mixed.set(kGroup + "xo-type=" + type).set(kGroup + "drymix=50").run(in, 512);
        EXPECT_LE(largestDifference(half[0], wet, 0), 1e-10) << type;
    }
}

TEST(TestSignalPath, OversampledSinesComeBackAtThePromisedLatency)
{
    for (const double frequency : {100.0, 15000.0, 19000.0})
        for (int mode = 2; mode <= 4; ++mode) {
            const CChannels in = makeSine(frequency, 1.0, 6000);
            CProductRig rig({});
            const CChannels out = rig.set("oversampling=" + std::to_string(mode)).run(in, 512);
            const auto delay = static_cast<std::size_t>(rig.latency());
            const double tolerance = frequency <= 15000.0 ? 1e-7 : mode == 2 ? 2e-7 : 1.2e-5;
            double worst = 0.0;
            for (std::size_t n = 3000; n < 6000; ++n)
                worst = std::max(worst, std::abs(out[0][n] - in[0][n - delay]));
            EXPECT_LE(worst, tolerance) << frequency << " Hz, mode " << mode;
        }
}

TEST(TestSignalPath, TheEqualizerSoundsAlikeInFrontOfAndBehindANeutralBand)
{
    const CChannels in = makeSine(1000.0, 0.1, 20000);
    double levels[3];
    for (int position = 0; position < 3; ++position) {
        CProductRig rig({});
        rig.set(kGroup + "eq-position=" + std::to_string(position)).set(kGroup + "eq-params.mode:0:2=Peaking");
        levels[position] = rms(rig.set(kGroup + "eq-params.gain:0:2=6").run(in, 512)[0], 4000);
    }
    EXPECT_NEAR(decibels(levels[0] / rms(in[0], 4000)), 0.0, 0.01);
    EXPECT_NEAR(decibels(levels[1] / levels[0]), 6.0, 0.01);
    EXPECT_NEAR(decibels(levels[2] / levels[1]), 0.0, 1e-6);
}

TEST(TestSignalPath, TheGateClosesOnWhatIsBelowItsThresholdAndOpensForWhatIsAbove)
{
    for (const auto& [amplitude, lowest, highest] : {std::tuple{0.01, -60.0, -10.0}, std::tuple{0.5, -0.1, 0.1}}) {
        const CChannels in = makeSine(1000.0, amplitude, 88200);
        CProductRig rig({});
        rig.set(kGroup + "gate-enable=1").set(kGroup + "gate-threshold=-24").set(kGroup + "gate-ratio=10:1");
        const double change = decibels(rms(rig.run(in, 512)[0], 66150) / rms(in[0], 66150));
        EXPECT_GE(change, lowest) << amplitude;
        EXPECT_LE(change, highest) << amplitude;
    }
}

TEST(TestSignalPath, TheCompressorFollowsTheKeySignalThatIsChosen)
{
    // The key channels carry a loud signal, the main ones a quiet one.
    CChannels in = makeSine(1000.0, 0.01, 88200);
    const CChannels key = makeSine(1000.0, 0.5, 88200);
    in.insert(in.end(), key.begin(), key.end());
    double levels[3];
    for (int source = 0; source < 3; ++source) {
        CProductRig rig({44100.0, 2, 2, 2});
        rig.set("io-params.in-routing:0:2=3").set("io-params.in-routing:0:3=4").set("io-params.sidechain:0:0=2");
        rig.set("io-params.sidechain:0:1=3")
            .set("io-params.sidechain-mute:0:2=1")
            .set("io-params.sidechain-mute:0:3=1");
        rig.set("io-params.grouping:0:2=0").set("io-params.grouping:0:3=0");
        rig.set(kGroup + "comp-enable=1").set(kGroup + "comp-threshold=-19").set(kGroup + "comp-ratio=2:1");
        rig.set(kGroup + "comp-attack=60"); // no make-up gain
        levels[source] = rms(rig.set(kGroup + "comp-keysrc=" + std::to_string(source)).run(in, 512)[0], 66150);
    }
    EXPECT_NEAR(decibels(levels[0] / rms(in[0], 66150)), 0.0, 0.01);
    EXPECT_NEAR(decibels(levels[2] / rms(in[0], 66150)), 0.0, 0.01);
    // 0.5 is -9.03 dB RMS: 9.97 dB over the threshold, half of it taken away. The detector is quick enough to ripple.
    EXPECT_NEAR(decibels(levels[1] / levels[0]), -4.99, 1.0);
}

TEST(TestSignalPath, ListeningToABandsKeySilencesTheOtherBands)
{
    CChannels in = makeSine(100.0, 0.25, 40000);
    const CChannels high = makeSine(8000.0, 0.25, 40000);
    for (std::size_t n = 0; n < in[0].size(); ++n)
        in[0][n] = in[1][n] += high[0][n];
    CProductRig rig({44100.0, 2, 2, 0, 3});
    rig.set(kGroup + "comp-keysrc-mon:0:0=1").set(kGroup + "bandgain:0:0=-18"); // the key knows no band gain
    const double level = rms(rig.run(in, 512)[0], 8000);
    // Half of a 24 dB low-pass at 400 Hz: 1 / (1 + (100 / 400)^2).
    EXPECT_NEAR(level / (0.25 * std::numbers::sqrt2 / 2.0), 16.0 / 17.0, 0.002);
}

TEST(TestSignalPath, TheClipperHoldsItsLimitAt1X)
{
    CProductRig rig({44100.0, 2, 2, 0, 3});
    const CChannels out = rig.set(kGroup + "clip-enable=1").set(kGroup + "outgain=12").run(makeNoise(2, 40000), 512);
    for (const std::vector<double>& channel : out)
        for (const double sample : channel)
            ASSERT_LE(std::abs(sample), 0.98 + 1e-10);
    EXPECT_GT(rms(out[0], 2000), rms(makeNoise(2, 40000)[0], 2000));
}

TEST(TestSignalPath, WhatIsNoNumberCountsAsSilence)
{
    CChannels broken = makeNoise(2, 6000);
    CChannels clean = broken;
    for (std::size_t n = 500; n < 900; ++n) {
        broken[n % 2][n] = n % 3 == 0 ? std::numeric_limits<double>::quiet_NaN()
                                      : std::copysign(std::numeric_limits<double>::infinity(), n % 5 < 2 ? 1.0 : -1.0);
        clean[n % 2][n] = 0.0;
    }
    const auto play = [](const CChannels& in) {
        CProductRig rig({44100.0, 2, 2, 0, 3});
        setEverything(rig);
        return rig.set("oversampling=2X").run(in, 512);
    };
    EXPECT_EQ(play(broken), play(clean));
}

TEST(TestSignalPath, NothingStaysOfAnAbsurdSample)
{
    const auto play = [](const CChannels& in) {
        CProductRig rig({44100.0, 2, 2, 0, 3});
        setEverything(rig);
        // An open gate: in its knee it would remember how it got there.
        return rig.set(kGroup + "gate-threshold=-60").run(in, 512)[0];
    };
    CChannels in = makeSine(1000.0, 0.1, 8 * 44100);
    const std::vector<double> want = play(in);
    in[0][100] = 1e300;
    const std::vector<double> got = play(in);
    for (std::size_t n = got.size() - 4410; n < got.size(); ++n)
        ASSERT_NEAR(got[n], want[n], 1e-6);
}

TEST(TestSignalPath, AfterALoudPassageItComesToRest)
{
    CChannels in = makeNoise(2, 20 * 44100);
    for (std::vector<double>& channel : in)
        std::fill(channel.begin() + 44100, channel.end(), 0.0);
    CProductRig rig({44100.0, 2, 2, 0, 3});
    setEverything(rig);
    const CChannels out = rig.run(in, 512);
    for (std::size_t n = out[0].size() - 4410; n < out[0].size(); ++n)
        ASSERT_LE(std::abs(out[0][n]), 1e-8);
}

} // namespace
