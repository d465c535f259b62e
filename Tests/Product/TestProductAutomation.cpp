// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/HostParams/CAudioExtParam.h"
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Tests/Product/CProductRig.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <tuple>

namespace {

constexpr std::size_t kFrames = 8000;
constexpr double kFadeSeconds = 0.015;   // what the product's nodes declare
constexpr std::size_t kFadeFrames = 662; // of 44100 Hz

/// Raised cosine from 0 to 1 in kFadeFrames samples.
double faded(std::size_t frame)
{
    return 0.5 - 0.5 * std::cos(std::numbers::pi * static_cast<double>(frame) / static_cast<double>(kFadeFrames));
}

/// No step of a raised cosine between two levels is larger than this.
double steepest(double from, double to)
{
    return std::abs(to - from) * 0.5 * std::numbers::pi / static_cast<double>(kFadeFrames) + 1e-10;
}

TEST(TestProductAutomation, AGainChangesAtItsSampleAlongTheDeclaredCrossfade)
{
    static_assert(kFadeFrames == static_cast<std::size_t>(kFadeSeconds * 44100.0 + 0.5));
    const std::uint64_t frame = 3001;
    CChannels whole;
    for (const std::size_t blockSize : {512u, 17u, 4096u}) {
        CProductRig rig({});
        rig.at(frame, "modThumpcraft.outgain=-6");
        const CChannels out = rig.run(makeOnes(2, kFrames), blockSize);
        const double low = std::pow(10.0, -6.0 / 20.0);
        const std::size_t start = frame + static_cast<std::size_t>(rig.latency());
        for (std::size_t i = static_cast<std::size_t>(rig.latency()); i < kFrames; ++i) {
            const double share = i < start ? 0.0 : i >= start + kFadeFrames ? 1.0 : faded(i - start);
            ASSERT_NEAR(out[0][i], 1.0 + share * (low - 1.0), 1e-9) << "frame " << i;
        }
        if (whole.empty())
            whole = out;
        EXPECT_EQ(out, whole) << "blocks of " << blockSize;
    }
}

TEST(TestProductAutomation, BypassInMidSignalFadesToTheUntouchedInput)
{
    const std::uint64_t frame = 2500;
    CProductRig rig({});
    rig.set("modThumpcraft.outgain=-12").at(frame, "bypass-enable=On");
    const CChannels out = rig.run(makeOnes(2, kFrames), 512);
    const std::size_t latency = static_cast<std::size_t>(rig.latency());
    const double low = std::pow(10.0, -12.0 / 20.0);
    EXPECT_NEAR(out[0][frame + latency - 1], low, 1e-10);
    EXPECT_NEAR(out[0].back(), 1.0, 1e-12);
    const std::vector<double> behindStart(out[0].begin() + static_cast<std::ptrdiff_t>(latency), out[0].end());
    EXPECT_LE(largestStep(behindStart), steepest(low, 1.0));
}

TEST(TestProductAutomation, ASoloInMidSignalDoesNotClickNorDoesItsEndOrItsMoveToAnotherGroup)
{
    CProductRig rig({44100.0, 4, 4, 0});
    for (int channel = 2; channel < 4; ++channel) {
        const std::string place = ":0:" + std::to_string(channel) + "=" + std::to_string(channel + 1);
        rig.set("io-params.in-routing" + place).set("io-params.out-routing" + place);
    }
    rig.at(2000, "io-params.channel-group-solo:1=On").at(4000, "io-params.channel-group-solo:0=On");
    rig.at(4000, "io-params.channel-group-solo:1=Off").at(6000, "io-params.channel-group-solo:0=Off");
    const CChannels out = rig.run(makeOnes(4, kFrames), 512);
    const std::size_t latency = static_cast<std::size_t>(rig.latency());
    EXPECT_LE(std::abs(out[0][3900 + latency]), 1e-10);
    EXPECT_LE(std::abs(out[2][5900 + latency]), 1e-10);
    EXPECT_NEAR(out[0].back(), 1.0, 1e-10);
    EXPECT_NEAR(out[2].back(), 1.0, 1e-10);
    for (std::size_t channel = 0; channel < 4; ++channel) {
        const std::vector<double> heard(out[channel].begin() + static_cast<std::ptrdiff_t>(latency),
                                        out[channel].end());
        EXPECT_LE(largestStep(heard), steepest(0.0, 1.0)) << "channel " << channel;
    }
}

TEST(TestProductAutomation, TwoEventsAtOneSampleLeaveTheLaterValue)
{
    CProductRig rig({});
    rig.at(1000, "modThumpcraft.outgain=6").at(1000, "modThumpcraft.outgain=-6");
    const CChannels out = rig.run(makeOnes(2, kFrames), 512);
    EXPECT_NEAR(out[0].back(), std::pow(10.0, -6.0 / 20.0), 1e-10);
}

TEST(TestProductAutomation, EveryHostParameterMayRampFromEndToEndHoweverFast)
{
    const CChannels in = makeNoise(2, 16000, 3);
    for (int param = 0; param < 72; ++param) {
        CProductRig rig({44100.0, 2, 2, 0, 3});
        rig.set("io-params.grouping:0:1=1"); // a channel for each of the two groups that hosts see
        for (const char* group : {"0", "1"}) {
            rig.set(std::string("modThumpcraft.gate-enable:") + group + "=1");
            for (const char* enable : {"comp-enable:", "sat-enable:"})
                for (const char* band : {":0=1", ":1=1", ":2=1"})
                    rig.set(std::string("modThumpcraft.") + enable + group + band);
        }
        // Up and down within a millisecond each, a point a sample; then within 100, a point every 15.
        for (const auto& [start, length, step] : {std::tuple{2000, 44, 1}, {4000, 4410, 15}})
            for (int n = 0; n <= 2 * length; n += step)
                rig.move(static_cast<std::uint64_t>(start + n), param, 1.0 - std::abs(1.0 - n / double(length)));
        const CChannels out = rig.run(in, 256);
        const std::string name = rig.instance().extParams()[static_cast<std::size_t>(param)]->getName().toUtf8();
        const bool isGain = name.ends_with("Gain") || name.ends_with("Rto");
        for (const std::vector<double>& channel : out)
            for (const double sample : channel)
                ASSERT_LE(std::abs(sample), isGain ? 5.0 : 1.6) << name; // what is no number is not less, either
    }
}

TEST(TestProductAutomation, FactoryProgramsUnderAutomationSoundTheSameHoweverTheHostCuts)
{
    constexpr std::size_t kShort = 3000;
    const CChannels in = makeNoise(2, kShort, 3);
    int programs = 1;
    for (int program = 0; program < programs; ++program) {
        CChannels whole;
        for (const std::size_t blockSize : {kShort, std::size_t{512}, std::size_t{61}, std::size_t{13}}) {
            CProductRig rig({44100.0, 2, 2, 0, 3});
            // Two points for each parameter, many of them at neighbouring samples.
            for (int param = 0; param < 72; ++param) {
                rig.move(static_cast<std::uint64_t>(300 + 31 * param), param, param * 37 % 100 / 100.0);
                rig.move(static_cast<std::uint64_t>(301 + 37 * param), param * 5 % 72, param * 11 % 100 / 100.0);
            }
            rig.start();
            programs = rig.instance().paramRegistry()->getProgramCount();
            ASSERT_FALSE(rig.instance().paramRegistry()->setCurrentProgram(program, nullptr));
            rig.restart();
            const CChannels out = rig.run(in, blockSize);
            if (whole.empty())
                whole = out;
            ASSERT_TRUE(out == whole) << "program " << program << ", blocks of " << blockSize;
        }
    }
    EXPECT_EQ(programs, 17);
}

} // namespace
