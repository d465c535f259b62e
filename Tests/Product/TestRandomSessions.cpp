// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessPlan.h"
#include "Tests/Product/CProductRig.h"

#include <gtest/gtest.h>
#include <random>

namespace {

constexpr std::size_t kFrames = 5000;

struct CChange {
    std::uint64_t frame;
    std::string setting;
};

/// What can be changed, with the groups, elements and whole values it takes.
struct CControl {
    const char* path;
    int groups, elements;
    int from, to;
};

constexpr CControl kControls[] = {
    {"modThumpcraft.xo-type", 1, 1, 0, 2},
    {"modThumpcraft.xo-count", 1, 1, 0, 2},
    {"modThumpcraft.xo-freq", 1, 2, 20, 20000},
    {"modThumpcraft.comp-enable", 4, 3, 0, 1},
    {"modThumpcraft.comp-attack", 4, 3, 1, 90},
    {"modThumpcraft.comp-keysrc", 4, 1, 0, 2},
    {"modThumpcraft.comp-keysrc-mon", 1, 3, 0, 1},
    {"modThumpcraft.sat-enable", 4, 3, 0, 1},
    {"modThumpcraft.bandsolo", 1, 3, 0, 1},
    {"modThumpcraft.drymix", 4, 1, 0, 100},
    {"modThumpcraft.gate-enable", 4, 1, 0, 1},
    {"modThumpcraft.gate-params.lookahead", 4, 1, 0, 5},
    {"modThumpcraft.clip-enable", 1, 1, 0, 1},
    {"modThumpcraft.eq-position", 4, 1, 0, 2},
    {"modThumpcraft.eq-params.band-count", 4, 1, 0, 6},
    {"modThumpcraft.eq-params.mode", 4, 5, 0, 9},
    {"modThumpcraft.eq-params.gain", 4, 5, -6, 6},
    {"modThumpcraft.eq-params.freq", 4, 5, 100, 9000},
    {"lp-oversampling-enable", 1, 1, 0, 1},
    {"oversampling", 1, 1, 1, 4},
    {"denorm-enable", 1, 1, 0, 1},
    {"bypass-enable", 1, 1, 0, 1},
    {"io-params.grouping", 1, 8, 0, 3},
    {"io-params.ms-pairs", 1, 8, 0, 3},
    {"io-params.in-routing", 1, 8, 0, 8},
    {"io-params.sidechain", 1, 8, 0, 7},
    {"io-params.sidechain-mute", 1, 8, 0, 1},
    {"io-params.channel-group-solo", 4, 1, 0, 1},
};

std::vector<CChange> makeChanges(unsigned seed)
{
    std::mt19937 random(seed);
    const auto pick = [&random](int from, int to) {
        return from + static_cast<int>(random() % static_cast<unsigned>(to - from + 1));
    };
    std::vector<CChange> changes;
    // Some follow each other closely, so that fades wait for fades.
    for (int frame = 0; frame < static_cast<int>(kFrames); frame += pick(0, 2) == 0 ? pick(0, 3) : pick(50, 700)) {
        const CControl& control = kControls[static_cast<std::size_t>(pick(0, std::size(kControls) - 1))];
        changes.push_back({static_cast<std::uint64_t>(frame), std::string(control.path) + ":" +
                                                                  std::to_string(pick(0, control.groups - 1)) + ":" +
                                                                  std::to_string(pick(0, control.elements - 1)) + "=" +
                                                                  std::to_string(pick(control.from, control.to))});
    }
    return changes;
}

CChannels play(const std::vector<CChange>& changes, std::size_t blockSize, bool isPlanned)
{
    CProductRig rig({44100.0, 8, 8, 0, 3});
    for (int channel = 0; channel < 8; ++channel) {
        const std::string place = ":0:" + std::to_string(channel) + "=" + std::to_string(channel + 1);
        rig.set("io-params.in-routing" + place).set("io-params.out-routing" + place);
    }
    for (const CChange& change : changes)
        rig.at(change.frame, change.setting);
    rig.instance().plan().setEnabled(isPlanned);
    return rig.run(makeNoise(8, kFrames), blockSize);
}

TEST(TestRandomSessions, SoundTheSameHoweverTheHostCutsWithAndWithoutAPlan)
{
    for (unsigned seed = 0; seed < 8; ++seed) {
        const std::vector<CChange> changes = makeChanges(seed);
        const CChannels want = play(changes, 512, false);
        for (const std::vector<double>& channel : want)
            for (const double sample : channel)
                ASSERT_LE(std::abs(sample), 1e3) << "seed " << seed;
        for (const auto& [blockSize, isPlanned] : {std::pair{512u, true}, {63u, true}, {37u, false}})
            ASSERT_EQ(play(changes, blockSize, isPlanned), want) << "seed " << seed << ", blocks of " << blockSize;
    }
}

} // namespace
