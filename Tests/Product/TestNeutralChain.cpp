// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Product/CProductRig.h"

#include <gtest/gtest.h>

namespace {

class TestNeutralChain : public testing::TestWithParam<double> {};

TEST_P(TestNeutralChain, GivesItsInputBackAtThePromisedLatencyAndTheSameBitsHoweverTheHostCuts)
{
    const double rate = GetParam();
    const CChannels in = makeNoise(2, 9000);
    CChannels whole;
    for (const std::size_t blockSize : {4096u, 512u, 64u, 17u, 1u}) {
        CProductRig rig({rate, 2, 2, 0});
        const CChannels out = rig.run(in, blockSize);
        ASSERT_EQ(rig.latency(), promisedLatency(rate));
        for (std::size_t channel = 0; channel < 2; ++channel)
            EXPECT_LE(largestDifference(out[channel], in[channel], static_cast<std::size_t>(rig.latency())), 1e-10)
                << "channel " << channel << ", blocks of " << blockSize;
        if (whole.empty())
            whole = out;
        EXPECT_EQ(out, whole) << "blocks of " << blockSize;
    }
}

INSTANTIATE_TEST_SUITE_P(Rates, TestNeutralChain,
                         testing::Values(44100.0, 48000.0, 88200.0, 96000.0, 176400.0, 192000.0));

TEST(TestNeutralChainEdges, NotMoreThanTheNoiseFloorComesOutOfSilence)
{
    CProductRig rig({});
    const CChannels out = rig.run(CChannels(2, std::vector<double>(4000, 0.0)), 512);
    for (const std::vector<double>& channel : out)
        for (const double sample : channel)
            ASSERT_LE(std::abs(sample), 1e-10);
}

TEST(TestNeutralChainEdges, BlocksOfAllLengthsInOneRunGiveTheSameBits)
{
    const CChannels in = makeNoise(2, 6000);
    // One instance after the other: those that live together draw different seeds for their noise floor.
    const CChannels want = CProductRig({}).run(in, 6000);
    CProductRig cut({});
    CChannels got(2);
    std::size_t position = 0;
    for (std::size_t length = 1; position < 6000; length = length * 3 % 1021 + 1) {
        const std::size_t count = std::min<std::size_t>(length, 6000 - position);
        CChannels piece(2);
        for (std::size_t channel = 0; channel < 2; ++channel)
            piece[channel].assign(in[channel].begin() + static_cast<std::ptrdiff_t>(position),
                                  in[channel].begin() + static_cast<std::ptrdiff_t>(position + count));
        const CChannels out = cut.run(piece, count);
        for (std::size_t channel = 0; channel < 2; ++channel)
            got[channel].insert(got[channel].end(), out[channel].begin(), out[channel].end());
        position += count;
    }
    EXPECT_EQ(got, want);
}

} // namespace
