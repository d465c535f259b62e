// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CDSPModDelay.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

namespace qrb {
namespace {

using CSignal = std::vector<double>;

struct CStep {
    int position;
    int delay;
};

/// Changes between rests, during fades, two during one fade, and back to the running target.
const std::vector<CStep> kScript = {{0, 10},    {777, 260}, {1501, 500}, {1700, 0}, {2600, 700},
                                    {2650, 20}, {2660, 35}, {3900, 0},   {3950, 9}, {3960, 0}};
constexpr int kLength = 5000;
constexpr int kFadeLength = 333;

CSignal makeNoise(int length, unsigned seed)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    CSignal noise(static_cast<std::size_t>(length));
    std::ranges::generate(noise, [&] { return uniform(generator); });
    return noise;
}

/// One sample at a time over the whole past, with a cosine in place of the recursion.
CSignal runModel(const CSignal& in)
{
    int current = -1, target = -1, pending = -1, faded = -1;
    const auto past = [&in](int at) { return at < 0 ? 0.0 : in[static_cast<std::size_t>(at)]; };
    CSignal out;
    for (int i = 0; i < kLength; ++i) {
        for (const CStep& step : kScript)
            if (step.position == i)
                pending = step.delay;
        if (current < 0)
            current = target = pending;
        if (faded < 0 && pending != current) {
            target = pending;
            faded = 0;
        }
        const double old = faded < 0 ? 1.0 : 0.5 + 0.5 * std::cos(std::numbers::pi * faded / kFadeLength);
        out.push_back(old * past(i - current) + (1.0 - old) * past(i - target));
        if (faded >= 0 && ++faded == kFadeLength) {
            current = target;
            faded = -1;
        }
    }
    return out;
}

CSignal runDelay(const CSignal& in, int blockSize, int cut)
{
    CSampleBufferPool pool;
    CDSPModDelay delay(pool);
    delay.setBlockSize(blockSize);
    delay.setFadeLength(kFadeLength);
    CSignal out(in.size());
    for (int position = 0; position < kLength;) {
        int end = std::min(position + cut, kLength);
        for (const CStep& step : kScript) {
            if (step.position == position)
                delay.setDelay(step.delay);
            else if (step.position > position)
                end = std::min(end, step.position);
        }
        CSampleBuffer block = pool.get(end - position);
        std::copy(in.begin() + position, in.begin() + end, block.data());
        const CSampleBuffer result = delay.process(block, end - position);
        std::copy(result.data(), result.data() + (end - position), out.begin() + position);
        position = end;
    }
    return out;
}

TEST(CDSPModDelay, FollowsTheModelAndGivesTheSameBitsHoweverBlocksAreCut)
{
    const CSignal in = makeNoise(kLength, 1);
    const CSignal want = runModel(in);
    const CSignal reference = runDelay(in, 64, kLength);
    for (int i = 0; i < kLength; ++i)
        ASSERT_NEAR(reference[static_cast<std::size_t>(i)], want[static_cast<std::size_t>(i)], 1e-10) << i;
    for (const int blockSize : {1, 64, 100, 1024})
        for (const int cut : {1, 17, 255, 256, 257, 512, kLength})
            EXPECT_EQ(runDelay(in, blockSize, cut), reference) << blockSize << " " << cut;
}

TEST(CDSPModDelay, KeepsItsSignalWhenTheBlockSizeChanges)
{
    const CSignal in = makeNoise(3000, 2);
    CSampleBufferPool pool;
    CDSPModDelay delay(pool);
    delay.setDelay(450);
    CSignal out(in.size());
    constexpr int kBlockSizes[] = {64, 1000, 100, 64, 777, 128};
    for (int i = 0; i < 6; ++i) {
        delay.setBlockSize(kBlockSizes[i]);
        delay.process(in.data() + i * 500, out.data() + i * 500, 500);
    }
    EXPECT_TRUE(std::equal(out.begin() + 450, out.end(), in.begin()));
    delay.reset();
    delay.setDelay(3);
    delay.process(in.data(), out.data(), 3);
    EXPECT_EQ(CSignal(out.begin(), out.begin() + 3), CSignal(3, 0.0)) << "a reset forgets signal and delay";
}

TEST(CDSPModDelay, HandsItsBufferOnWithoutADelayAndRemembersItForALaterOne)
{
    CSampleBufferPool pool;
    CDSPModDelay delay(pool);
    delay.setDelay(0);
    CSampleBuffer in = pool.get(200);
    const CSignal samples = makeNoise(200, 3);
    std::ranges::copy(samples, in.data());
    EXPECT_EQ(delay.process(in, 200), in);
    delay.setFadeLength(1);
    delay.setDelay(100);
    CSignal out(100);
    delay.process(samples.data(), out.data(), 100);
    EXPECT_TRUE(std::equal(out.begin() + 1, out.end(), samples.begin() + 101));
}

TEST(CDSPModDelay, GrowsWithAllItRemembersAndSilenceBeforeThat)
{
    const CSignal in = makeNoise(4000, 6);
    // Without a delay so far, the ring is as long as its block size says.
    for (const auto& [blockSize, remembered] : {std::pair{64, 256}, {1024, 1024}})
        for (int start = 1100; start < 2200; start += 113)
            for (const int samples : {250, 700, 1700}) {
                CSampleBufferPool pool;
                CDSPModDelay delay(pool);
                delay.setBlockSize(blockSize);
                delay.setFadeLength(1);
                delay.setDelay(0);
                CSignal out = in;
                delay.process(in.data(), out.data(), start);
                delay.setDelay(samples);
                for (int i = start; i < start + 1750; i += 50)
                    delay.process(&in[static_cast<std::size_t>(i)], &out[static_cast<std::size_t>(i)], 50);
                for (int i = start + 1; i < start + 1750; ++i) {
                    const int from = i - samples;
                    const double want = from < start - remembered ? 0.0 : in[static_cast<std::size_t>(from)];
                    ASSERT_EQ(out[static_cast<std::size_t>(i)], want) << blockSize << " " << start << " " << samples;
                }
            }
}

TEST(CDSPModDelay, ReadsASecondTapBehindTheFirst)
{
    CSampleBufferPool pool;
    CDSPModDelay delay(pool);
    delay.setSecondTap(70);
    delay.setFadeLength(50);
    delay.setDelay(5);
    CSignal in = makeNoise(900, 4);
    const CSignal original = in;
    CSignal second(in.size());
    delay.process(in.data(), in.data(), second.data(), 300);
    delay.setDelay(40);
    delay.process(in.data() + 300, in.data() + 300, second.data() + 300, 600);
    EXPECT_TRUE(std::equal(in.begin() + 5, in.begin() + 300, original.begin())) << "in place";
    EXPECT_TRUE(std::equal(second.begin() + 75, second.begin() + 300, original.begin()));
    EXPECT_TRUE(std::equal(second.begin() + 350, second.end(), original.begin() + 350 - 110));
}

TEST(CDSPModDelay, AllocatesNothingWhileItsDelaysStayWithinWhatItHasSeen)
{
    CSampleBufferPool pool;
    CDSPModDelay delay(pool);
    delay.setFadeLength(100);
    delay.setDelay(5000);
    CSampleBuffer in = pool.getSilence(512);
    (void)delay.process(in, 512);
    const auto before = CQrbMemAllocator::allocateCount();
    for (int i = 0; i < 50; ++i) {
        delay.setDelay(i * 97 % 5000);
        (void)delay.process(in, 512);
    }
    EXPECT_EQ(CQrbMemAllocator::allocateCount(), before);
}

} // namespace
} // namespace qrb
