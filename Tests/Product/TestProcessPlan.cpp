// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessPlan.h"
#include "Audio/VectorWidth.h"
#include "Tests/Product/CProductRig.h"

#include <gtest/gtest.h>

namespace {

const std::string kGroup = "modThumpcraft.";

/// Eight channels in four groups, with changes of every kind on the way: values, fades, bands, filters, wiring, rates.
CChannels playChanges(bool isPlanned, std::size_t blockSize, std::size_t& seriesCount)
{
    CProductRig rig({44100.0, 8, 8, 0, 3});
    for (int channel = 0; channel < 8; ++channel) {
        const std::string place = ":0:" + std::to_string(channel) + "=" + std::to_string(channel + 1);
        rig.set("io-params.in-routing" + place).set("io-params.out-routing" + place);
    }
    rig.set(kGroup + "comp-enable:1:0=1").set(kGroup + "sat-enable:1:2=1").set(kGroup + "gate-enable:2=1");
    rig.at(1000, kGroup + "outgain=-6").at(1100, kGroup + "outgain=3").at(2000, kGroup + "comp-enable:0:1=1");
    rig.at(3000, kGroup + "eq-params.mode:0:0=Peaking").at(3300, kGroup + "eq-params.gain:0:0=6");
    rig.at(3500, kGroup + "eq-params.mode:0:2=Peaking").at(3700, kGroup + "eq-params.mode:0:3=Peaking");
    rig.at(4000, kGroup + "xo-type=2").at(5000, kGroup + "xo-count=1").at(6000, kGroup + "xo-count=2");
    rig.at(6500, "lp-oversampling-enable=0")
        .at(7000, "oversampling=2X")
        .at(9000, "oversampling=1X")
        .at(10000, kGroup + "eq-position=2");
    rig.at(11000, kGroup + "clip-enable=1").at(12000, "io-params.ms-pairs:0:0=MS1");
    rig.at(12000, "io-params.ms-pairs:0:1=MS1").at(13000, kGroup + "gate-enable:0=1").at(14000, "bypass-enable=1");
    // What only hands lines on comes and goes.
    rig.at(4300, kGroup + "drymix:0=50").at(4350, kGroup + "drymix:0=100").at(4600, kGroup + "bandsolo:0:1=1");
    rig.at(4700, kGroup + "comp-keysrc-mon:0:1=1").at(9500, kGroup + "bandsolo:0:1=0");
    rig.at(10500, kGroup + "drymix:0=0").at(11500, kGroup + "comp-keysrc-mon:0:1=0");
    rig.instance().plan().setEnabled(isPlanned);
    const CChannels out = rig.run(makeNoise(8, 16000), blockSize);
    EXPECT_EQ(rig.instance().plan().isMade(), isPlanned);
    seriesCount = rig.instance().plan().seriesCount();
    return out;
}

TEST(TestProcessPlan, GivesTheBitsOfTheGraphThroughAllKindsOfChanges)
{
    std::size_t seriesCount = 0;
    const CChannels want = playChanges(false, 512, seriesCount);
    for (const std::size_t blockSize : {512u, 64u, 37u})
        EXPECT_EQ(playChanges(true, blockSize, seriesCount), want) << "blocks of " << blockSize;
    EXPECT_GE(seriesCount, 4u * 5u) << "the filters of each group's equaliser";
}

TEST(TestProcessPlan, FollowersOfTheClipperRunSideBySideInPiecesOfTheBlock)
{
    const auto play = [](bool isPlanned, std::size_t blockSize) {
        CProductRig rig({44100.0, 2, 2, 0, 3});
        rig.set(kGroup + "clip-enable=1").set(kGroup + "outgain=12");
        rig.at(3000, kGroup + "clip-enable=0").at(5000, kGroup + "clip-enable=1");
        rig.instance().plan().setEnabled(isPlanned);
        const CChannels out = rig.run(makeNoise(2, 9000), blockSize);
        EXPECT_EQ(rig.instance().plan().pieceCount() > 1, isPlanned && qrb::hasVectorWidth(qrb::EVectorWidth::quads));
        return out;
    };
    const CChannels want = play(false, 512);
    for (const std::size_t blockSize : {512u, 509u, 64u, 37u, 32u, 5u})
        EXPECT_TRUE(play(true, blockSize) == want) << "blocks of " << blockSize;
}

} // namespace
