// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CQrbMemAllocator.h"
#include "Tests/Audio/CGraphRig.h"

#include <cmath>
#include <gtest/gtest.h>

namespace qrb {

namespace {

/// A graph with all that a block can meet: a stack, delays that align, merges, fades, states.
const std::string kBody =
    paramXml("level", "1;0.5") + paramXml("flip", "0") + paramXml("three", "3") +
    "<audio:process-bypass-state name='s' id='1' param='flip' value='1'/>" +
    probeXml("pre", "^level", "xfade-length='0.015' is-smooth-update='true'") + "<audio:modNode name='tap'/>" +
    "<audio:modDelay name='late' latency='37' bypass-state-id='1'/>"
    "<audio:process-def name='st' is-stacked='true' is-auto-links='true'>" +
    probeXml("a", "^^level") + probeXml("b", "^^three", "is-terminal-whole='true'") +
    "<audio:process-link name='l' src='*/1' dst='b'/></audio:process-def>"
    "<audio:process-link name='l' src='tap' dst='st/1'/>" +
    probeXml("sum", "^three", "input-combo-mode='avg'") + "<audio:process-link name='l' src='tap' dst='sum'/>";

double noise(int line, int sample)
{
    return std::sin(0.37 * sample * (line + 1)) + 0.25 * std::sin(0.011 * sample);
}

} // namespace

TEST(GraphSteadyState, BlocksAllocateNothingOnceTheirSizesAreKnown)
{
    CGraphRig rig(kBody);
    rig.setLines({{0, 0}, {1, 0}, {2, 1}, {3, 1}});
    rig.input = noise;
    const auto turn = [&](int round) {
        for (const int block : {512, 1, 300, 64}) {
            rig.feedOnly(block);
            if (block == 300)
                rig.set("level", round % 2 == 0 ? 0.9 : 0.8); // in fades, or behind them
        }
    };
    for (int round = 0; round < 8; ++round)
        turn(round);
    rig.allocations = 0;
    for (int round = 0; round < 8; ++round)
        turn(round);
    EXPECT_EQ(rig.allocations, 0u);
}

TEST(GraphSteadyState, OutputIsTheSameHoweverBlocksAreCut)
{
    std::map<int, std::vector<double>> reference;
    for (const int block : {64, 1, 17, 512}) {
        CGraphRig rig(kBody);
        rig.setLines({{0, 0}, {2, 1}});
        rig.input = noise;
        std::map<int, std::vector<double>> out;
        const auto append = [&](int count) {
            for (const auto& [channel, samples] : rig.run(count, block))
                out[channel].insert(out[channel].end(), samples.begin(), samples.end());
        };
        (void)rig.run(1);
        append(1500);
        rig.set("level", 0.3);
        append(100);
        rig.set("flip", 1.0);
        rig.set("level", 0.7, 1);
        append(333);
        rig.set("level", 0.1);
        rig.set("flip", 0.0);
        append(3000);
        if (reference.empty())
            reference = out;
        EXPECT_EQ(out.size(), 2u);
        EXPECT_TRUE(out == reference) << "blocks of " << block;
    }
}

} // namespace qrb
