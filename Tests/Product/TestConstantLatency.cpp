// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Product/CProductRig.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace {

const std::string kGroup = "modThumpcraft.";

/// Where an impulse comes out, against the promised latency: the sample of its peak, and the mean of its samples' places
/// weighted by them, which is the delay of low frequencies.
struct CArrival {
    long peak = 0;
    double mean = 0.0;
};

/// Plays an impulse from rest, or behind a signal that is still there, and looks for it.
CArrival playImpulse(CProductRig& rig, long latency, double amplitude = 0.5)
{
    constexpr long kPlace = 16;
    constexpr long kTail = 700; // what the longest filters need to ring out
    CChannels in(2, std::vector<double>(static_cast<std::size_t>(kPlace + latency + kTail), 0.0));
    in[0][kPlace] = in[1][kPlace] = amplitude;
    const std::vector<double> out = rig.run(in, 512)[1];
    const auto louder = [](double a, double b) { return std::abs(a) < std::abs(b); };
    CArrival arrival;
    arrival.peak = std::max_element(out.begin(), out.end(), louder) - out.begin() - kPlace - latency;
    double sum = 0.0;
    for (std::size_t n = 0; n < out.size(); ++n) {
        sum += out[n];
        arrival.mean += out[n] * static_cast<double>(static_cast<long>(n) - kPlace - latency);
    }
    arrival.mean /= sum;
    return arrival;
}

/// Samples by which recursive half-bands are late at low frequencies, up and down again, of so many doublings. They tell
/// no latency: which one would depend on the frequency. It is 2 * sum((1 - a) / (1 + a)) over one path of the declared
/// coefficients, a quarter of that at each doubling further up.
double recursiveDelay(int doublings)
{
    constexpr double kSteep = 3.73989;
    constexpr double kSoft = 2.70798;
    constexpr double kDelays[] = {0.0, kSteep, kSteep + kSoft / 2.0, kSteep + kSoft / 2.0 + kSoft / 4.0};
    return kDelays[doublings];
}

/// The modes of the parameter, and how many doublings each is on line.
constexpr int kDoublings[] = {0, 0, 1, 2, 3};

class TestConstantLatency : public testing::TestWithParam<double> {};

TEST_P(TestConstantLatency, ThePathAndTheBypassComeOutAtThePromisedSampleInEverySetting)
{
    const double rate = GetParam();
    const int latency = promisedLatency(rate);
    CProductRig rig({rate, 2, 2, 0, 1});
    rig.set(kGroup + "gate-threshold=-60").set(kGroup + "eq-params.gain:0:3=6").start();
    const int offlineDoublings = rate < 72000.0 ? 2 : rate < 144000.0 ? 1 : 0;
    for (int settings = 0; settings < 8; ++settings) {
        const bool hasEqualizer = (settings & 1) != 0;
        rig.change(kGroup + "eq-params.mode:0:3=" + (hasEqualizer ? "Peaking" : "Off"));
        rig.change(kGroup + "gate-enable=" + ((settings & 2) != 0 ? "1" : "0"));
        rig.change(kGroup + "clip-enable=" + ((settings & 4) != 0 ? "1" : "0"));
        double ownMean = 0.0; // what the equaliser adds
        for (int mode = 0; mode < 6; ++mode) {
            const bool isOffline = mode == 5;
            rig.instance().setOffline(isOffline);
            rig.change("oversampling=" + std::to_string(isOffline ? 0 : mode));
            const int doublings = isOffline ? offlineDoublings : kDoublings[mode];
            for (const bool isLinear : {true, false}) {
                rig.change(std::string("lp-oversampling-enable=") + (isLinear ? "1" : "0"));
                const std::string where = "mode " + std::to_string(mode) + ", linear " + std::to_string(isLinear) +
                                          ", settings " + std::to_string(settings);
                rig.restart();
                ASSERT_EQ(rig.latency(), latency) << where;
                const CArrival path = playImpulse(rig, latency);
                if (mode == 0 && isLinear)
                    ownMean = path.mean;
                if (isLinear || doublings == 0) {
                    EXPECT_EQ(path.peak, 0) << where;
                }
                EXPECT_NEAR(path.mean, ownMean + (isLinear ? 0.0 : recursiveDelay(doublings)),
                            hasEqualizer ? 0.05 : 1e-3)
                    << where;
                if (!hasEqualizer) {
                    EXPECT_NEAR(ownMean, 0.0, 1e-3) << where;
                }

                rig.change("bypass-enable=1");
                rig.restart();
                ASSERT_EQ(rig.latency(), latency) << where;
                const CArrival bypass = playImpulse(rig, latency);
                EXPECT_EQ(bypass.peak, 0) << where;
                EXPECT_NEAR(bypass.mean, 0.0, 1e-6) << where;
                rig.change("bypass-enable=0");
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Rates, TestConstantLatency,
                         testing::Values(44100.0, 48000.0, 88200.0, 96000.0, 176400.0, 192000.0, 352800.0, 384000.0));

TEST(TestConstantLatencyLive, ChangesInMidSignalNeverMoveIt)
{
    for (const double rate : {44100.0, 384000.0}) {
        const int latency = promisedLatency(rate);
        CProductRig rig({rate, 2, 2, 0, 1});
        rig.start();
        ASSERT_EQ(rig.latency(), latency);
        const CChannels noise = makeNoise(2, static_cast<std::size_t>(0.05 * rate));
        const CChannels silence(2, std::vector<double>(noise[0].size(), 0.0));
        // Each step changes several of them; what the graph held before must be gone when the impulse comes.
        for (int step = 0; step < 20; ++step) {
            static_cast<void>(rig.run(noise, 500));
            const int mode = step * 3 % 5;
            const bool isLinear = step / 2 % 2 == 0;
            rig.change("oversampling=" + std::to_string(mode));
            rig.change(std::string("lp-oversampling-enable=") + (isLinear ? "1" : "0"));
            rig.change(kGroup + "gate-enable=" + std::to_string(step % 3 == 0));
            rig.change(kGroup + "gate-threshold=-60");
            rig.change(kGroup + "clip-enable=" + std::to_string(step / 3 % 2));
            rig.change("bypass-enable=" + std::to_string(step % 7 == 6));
            static_cast<void>(rig.run(noise, 500));
            static_cast<void>(rig.run(silence, 500));
            EXPECT_FALSE(rig.instance().isLatencyChangePending()) << step;
            ASSERT_EQ(rig.latency(), latency) << step;
            const CArrival arrival = playImpulse(rig, latency);
            const bool isExact = isLinear || kDoublings[mode] == 0 || step % 7 == 6;
            EXPECT_NEAR(arrival.mean, isExact ? 0.0 : recursiveDelay(kDoublings[mode]), 1e-3) << step;
            EXPECT_TRUE(!isExact || arrival.peak == 0) << step << ": " << arrival.peak;
        }
    }
}

} // namespace
