// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Product/CProductRig.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

constexpr std::size_t kFrames = 6000;

double factor(double db)
{
    return std::pow(10.0, db / 20.0);
}

std::vector<double> scaled(const std::vector<double>& samples, double gain)
{
    std::vector<double> out = samples;
    for (double& sample : out)
        sample *= gain;
    return out;
}

void expectDelayed(CProductRig& rig, const std::vector<double>& out, const std::vector<double>& want)
{
    EXPECT_LE(largestDifference(out, want, static_cast<std::size_t>(rig.latency())), 1e-10);
}

TEST(TestProductRouting, MidSideInAndOutAgainChangesNothing)
{
    CProductRig rig({});
    rig.set("io-params.ms-pairs:0:0=MS1").set("io-params.ms-pairs:0:1=MS1");
    const CChannels in = makeNoise(2, kFrames);
    const CChannels out = rig.run(in, 512);
    expectDelayed(rig, out[0], in[0]);
    expectDelayed(rig, out[1], in[1]);
}

TEST(TestProductRouting, MidAndSideAreTwoSignalsWithGainsOfTheirOwn)
{
    CProductRig rig({});
    rig.set("io-params.ms-pairs:0:0=MS1").set("io-params.ms-pairs:0:1=MS1");
    rig.set("io-params.grouping:0:0=0").set("io-params.grouping:0:1=1");
    rig.set("modThumpcraft.outgain:0=-6").set("modThumpcraft.outgain:1=3");
    const CChannels in = makeNoise(2, kFrames);
    const CChannels out = rig.run(in, 512);
    std::vector<double> left(kFrames);
    std::vector<double> right(kFrames);
    for (std::size_t i = 0; i < kFrames; ++i) {
        const double mid = 0.5 * (in[0][i] + in[1][i]) * factor(-6.0);
        const double side = 0.5 * (in[0][i] - in[1][i]) * factor(3.0);
        left[i] = mid + side;
        right[i] = mid - side;
    }
    expectDelayed(rig, out[0], left);
    expectDelayed(rig, out[1], right);
}

TEST(TestProductRouting, OneInputFeedsBothOutputs)
{
    CProductRig rig({44100.0, 1, 2, 0});
    rig.set("io-params.in-routing:0:1=0").set("io-params.out-routing:0:1=1");
    const CChannels in = makeNoise(1, kFrames);
    const CChannels out = rig.run(in, 512);
    expectDelayed(rig, out[0], in[0]);
    EXPECT_EQ(out[0], out[1]);
}

TEST(TestProductRouting, ChannelsCross)
{
    CProductRig rig({});
    rig.set("io-params.in-routing:0:0=2").set("io-params.in-routing:0:1=1");
    const CChannels in = makeNoise(2, kFrames);
    const CChannels out = rig.run(in, 512);
    expectDelayed(rig, out[0], in[1]);
    expectDelayed(rig, out[1], in[0]);
}

TEST(TestProductRouting, EightChannelsInFourGroupsKeepTheirGains)
{
    CProductRig rig({48000.0, 8, 8, 0});
    for (int channel = 0; channel < 8; ++channel) {
        const std::string place = ":0:" + std::to_string(channel) + "=" + std::to_string(channel + 1);
        rig.set("io-params.in-routing" + place).set("io-params.out-routing" + place);
    }
    const double gains[] = {-6.0, 0.0, 3.0, 12.0}; // channels are grouped in pairs by default
    for (int group = 0; group < 4; ++group)
        rig.set("modThumpcraft.outgain:" + std::to_string(group) + "=" + std::to_string(gains[group]));
    const CChannels in = makeNoise(8, kFrames);
    const CChannels out = rig.run(in, 512);
    for (std::size_t channel = 0; channel < 8; ++channel)
        expectDelayed(rig, out[channel], scaled(in[channel], factor(gains[channel / 2])));
}

TEST(TestProductRouting, SoloOfAGroupSilencesTheOthers)
{
    CProductRig rig({44100.0, 4, 4, 0});
    for (int channel = 2; channel < 4; ++channel) {
        const std::string place = ":0:" + std::to_string(channel) + "=" + std::to_string(channel + 1);
        rig.set("io-params.in-routing" + place).set("io-params.out-routing" + place);
    }
    rig.set("io-params.channel-group-solo:1=On");
    const CChannels in = makeNoise(4, kFrames);
    const CChannels out = rig.run(in, 512);
    for (std::size_t channel = 0; channel < 2; ++channel)
        for (const double sample : out[channel])
            ASSERT_LE(std::abs(sample), 1e-10);
    expectDelayed(rig, out[2], in[2]);
    expectDelayed(rig, out[3], in[3]);
}

TEST(TestProductRouting, KeyChannelsBeyondTheRoutingTableGoNowhere)
{
    CProductRig rig({44100.0, 8, 8, 2});
    for (int channel = 0; channel < 8; ++channel)
        rig.set("io-params.in-routing:0:" + std::to_string(channel) + "=0");
    const CChannels out = rig.run(makeNoise(10, kFrames), 512);
    for (const std::vector<double>& channel : out)
        for (const double sample : channel)
            ASSERT_LE(std::abs(sample), 1e-10);
}

TEST(TestProductRouting, AChannelMarkedAsKeyOnlyDoesNotSound)
{
    CProductRig rig({});
    rig.set("io-params.sidechain-mute:0:1=1");
    const CChannels in = makeNoise(2, kFrames);
    const CChannels out = rig.run(in, 512);
    expectDelayed(rig, out[0], in[0]);
    for (const double sample : out[1])
        ASSERT_LE(std::abs(sample), 1e-10);
}

} // namespace
