// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CFilterFIR.h"
#include "Audio/Filters/CPhasedFIR.h"
#include "Audio/VectorWidth.h"
#include "Core/CQrbMemAllocator.h"
#include "Platform/CBlockTransformPool.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numeric>
#include <random>
#include <vector>

namespace qrb {
namespace {

using CSignal = std::vector<double>;

CSignal noise(std::size_t count, unsigned seed)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> value(-1.0, 1.0);
    CSignal samples(count);
    for (double& sample : samples)
        sample = value(generator);
    return samples;
}

/// Full-scale output for full-scale noise.
CSignal response(std::size_t count)
{
    CSignal taps = noise(count, 3);
    for (double& tap : taps)
        tap /= std::sqrt(static_cast<double>(count));
    return taps;
}

/// The definition at one sample, where all samples before the first are like the first.
double convolved(const CSignal& taps, const CSignal& in, std::ptrdiff_t n)
{
    double sum = 0.0;
    for (std::size_t k = 0; k < taps.size(); ++k) {
        const std::ptrdiff_t at = std::max<std::ptrdiff_t>(n - static_cast<std::ptrdiff_t>(k), 0);
        sum += taps[k] * in[static_cast<std::size_t>(at)];
    }
    return sum;
}

/// Anything with process(in, out, count), in calls of uneven length; `largest` 0: in one.
template <class T>
CSignal run(T& filter, const CSignal& in, std::size_t largest)
{
    CSignal out(in.size());
    std::size_t at = 0;
    for (std::size_t turn = 1; at < in.size(); ++turn) {
        const std::size_t count = largest == 0 ? in.size() : std::min(in.size() - at, turn * 7919 % largest + 1);
        filter.process(in.data() + at, out.data() + at, count);
        at += count;
    }
    return out;
}

/// Around the beginning, the ends of blocks and of the response, and in between.
void expectConvolved(const CSignal& out, const CSignal& taps, const CSignal& in, std::size_t latency)
{
    const std::size_t step = out.size() / 24 + 1;
    for (std::size_t n = 0; n < out.size(); n += n % step < 3 ? 1 : step - 3) {
        const auto at = static_cast<std::ptrdiff_t>(n) - static_cast<std::ptrdiff_t>(latency);
        ASSERT_NEAR(out[n], convolved(taps, in, at), 1e-12) << n;
    }
}

/// A filter in phases behind the interface of one that is not: told what is zeros and what is wanted, call by call.
struct CPhases {
    CPhasedFIR filter;
    bool isStuffed = false;
    std::function<unsigned(std::size_t call)> wanted; ///< bit 0: even, bit 1: odd ones
    std::size_t calls = 0;

    void process(const double* in, double* out, std::size_t count)
    {
        std::vector<double> even(count / 2);
        std::vector<double> odd(count / 2);
        convolverKernels().takeApart(in, even.data(), odd.data(), count / 2);
        CSignal made[2] = {CSignal(count / 2), CSignal(count / 2)};
        const unsigned what = wanted ? wanted(calls++) : 3;
        filter.process({even.data(), isStuffed ? nullptr : odd.data()},
                       {(what & 1) != 0 ? made[0].data() : nullptr, (what & 2) != 0 ? made[1].data() : nullptr},
                       count / 2);
        convolverKernels().interleave(made[0].data(), made[1].data(), out, count / 2);
    }
};

/// The same for calls of even length.
template <class T>
CSignal runPairs(T& filter, const CSignal& in, std::size_t largest)
{
    CSignal out(in.size());
    std::size_t at = 0;
    for (std::size_t turn = 1; at < in.size(); ++turn) {
        const std::size_t count = std::min(in.size() - at, 2 * (turn * 7919 % largest + 1));
        filter.process(in.data() + at, out.data() + at, count);
        at += count;
    }
    return out;
}

CSignal stuffed(CSignal in)
{
    for (std::size_t n = 1; n < in.size(); n += 2)
        in[n] = 0.0;
    return in;
}

class FilterFIR : public testing::Test {
protected:
    platform::CBlockTransformPool m_plans;
};

TEST_F(FilterFIR, EqualsDirectConvolutionAtEveryLengthAndLatency)
{
    for (const std::size_t count : {1u, 15u, 16u, 17u, 64u, 65u, 127u, 129u, 300u, 1023u, 4099u, 16400u, 70000u}) {
        const CSignal taps = response(count);
        const CSignal in = noise(count + 20000, 5);
        CFilterFIR filter;
        filter.setZeroLatency(taps, m_plans);
        SCOPED_TRACE(count);
        expectConvolved(run(filter, in, 200), taps, in, 0);
        for (int latency = 4; latency <= 14; ++latency) {
            SCOPED_TRACE(latency);
            filter.setPartitioned(taps, latency, m_plans);
            expectConvolved(run(filter, in, 1000), taps, in, std::size_t{1} << latency);
        }
    }
}

TEST_F(FilterFIR, StartsAtTheSteadyLevelOfItsFirstSampleAndAgainAfterAReset)
{
    const CSignal taps = response(9000);
    const double sum = std::accumulate(taps.begin(), taps.end(), 0.0);
    const auto expectSteady = [&](CFilterFIR& filter, double level) {
        for (const double sample : run(filter, CSignal(20000, level), 300))
            ASSERT_NEAR(sample, level * sum, 1e-12);
    };
    CFilterFIR filter;
    for (const bool isZeroLatency : {false, true}) {
        if (isZeroLatency)
            filter.setZeroLatency(taps, m_plans);
        else
            filter.setPartitioned(taps, 7, m_plans);
        expectSteady(filter, 0.7);
        (void)run(filter, noise(777, 1), 0);
        filter.reset();
        expectSteady(filter, -0.3);
    }
}

TEST_F(FilterFIR, GivesTheSameBitsHoweverCallsAreCutAndAllocatesNothing)
{
    const CSignal taps = response(3000);
    const CSignal in = noise(10000, 9);
    CFilterFIR filter;
    for (const bool isZeroLatency : {false, true}) {
        if (isZeroLatency)
            filter.setZeroLatency(taps, m_plans);
        else
            filter.setPartitioned(taps, 6, m_plans);
        const CSignal whole = run(filter, in, 0);
        for (const std::size_t largest : {1u, 37u, 600u}) {
            filter.reset();
            const std::uint64_t allocations = CQrbMemAllocator::allocateCount();
            EXPECT_EQ(run(filter, in, largest), whole) << largest;
            EXPECT_EQ(CQrbMemAllocator::allocateCount(), allocations);
        }
    }
}

TEST_F(FilterFIR, ReturnsToRestAfterTheLastTap)
{
    CFilterFIR filter;
    filter.setZeroLatency(response(700), m_plans);
    CSignal in = noise(4000, 2);
    in.resize(8000);
    const CSignal out = run(filter, in, 100);
    // The transforms of silence are silent, once the longest block has passed.
    EXPECT_EQ(CSignal(out.begin() + 6500, out.end()), CSignal(1500));
}

TEST_F(FilterFIR, RunsInPhasesAsAWhole)
{
    for (const std::size_t count : {1u, 2u, 39u, 64u, 365u, 1017u, 9000u}) {
        SCOPED_TRACE(count);
        const CSignal taps = response(count);
        const CSignal in = noise(20000, 8);
        for (const int latency : {0, 5, 7, 10}) {
            SCOPED_TRACE(latency);
            CFilterFIR filter;
            CPhases phases;
            if (latency == 0) {
                filter.setZeroLatency(taps, m_plans);
                phases.filter.setZeroLatency(taps, m_plans);
            } else {
                filter.setPartitioned(taps, latency, m_plans);
                phases.filter.setPartitioned(taps, latency, m_plans);
            }
            // Behind what the beginning leaves: a level for each place, or one for both.
            const CSignal whole = run(filter, in, 0);
            const CSignal apart = runPairs(phases, in, 150);
            for (std::size_t n = count + (std::size_t{2} << latency); n < in.size(); ++n)
                ASSERT_NEAR(apart[n], whole[n], 1e-12) << n;
        }
    }
}

TEST_F(FilterFIR, WhatIsLeftOutInPhasesChangesNoBitOfTheRest)
{
    for (const bool isZeroLatency : {false, true}) {
        for (const std::size_t count : {39u, 1017u, 3000u}) {
            SCOPED_TRACE(count);
            const auto make = [&](CPhases& phases) {
                if (isZeroLatency)
                    phases.filter.setZeroLatency(response(count), m_plans);
                else
                    phases.filter.setPartitioned(response(count), 7, m_plans);
            };
            CSignal in = noise(12000, 6);
            const CSignal zeros = stuffed(in);
            std::copy(zeros.begin() + 3000, zeros.begin() + 9000, in.begin() + 3000);
            CPhases all;
            make(all);
            const CSignal expected = runPairs(all, in, 500);

            // Odd samples that are told to be zeros where they are, and made only now and then.
            CPhases some;
            make(some);
            some.wanted = [](std::size_t call) { return call % 7 == 3 ? 2U : call % 5 == 0 ? 3U : 1U; };
            CSignal out(in.size());
            for (std::size_t at = 0, call = 0; at < in.size(); ++call) {
                const std::size_t length = std::min<std::size_t>(in.size() - at, 2 * (call * 13 % 40 + 1));
                some.isStuffed = at >= 3000 && at + length <= 9000;
                some.process(in.data() + at, out.data() + at, length);
                const unsigned what = some.wanted(call);
                for (std::size_t n = at; n < at + length; ++n) {
                    if ((what >> (n % 2) & 1U) != 0) {
                        ASSERT_EQ(out[n], expected[n]) << n;
                    }
                }
                at += length;
            }
        }
    }
}

TEST_F(FilterFIR, PhasesStartSteadyAndAllocateNothing)
{
    const CSignal taps = response(1017);
    CPhases phases;
    phases.filter.setPartitioned(taps, 7, m_plans);
    const CSignal out = runPairs(phases, stuffed(CSignal(4000, 0.5)), 100);
    for (std::size_t n = 2; n < out.size(); ++n)
        ASSERT_NEAR(out[n], out[n % 2], 1e-13) << n;
    const CSignal in = noise(1000, 3);
    CSignal made(1000);
    const std::uint64_t allocations = CQrbMemAllocator::allocateCount();
    phases.filter.reset();
    phases.filter.process({in.data(), nullptr}, {made.data(), nullptr}, 500);
    phases.filter.process({in.data(), in.data()}, {made.data(), made.data() + 500}, 500);
    EXPECT_EQ(CQrbMemAllocator::allocateCount(), allocations);
}

TEST_F(FilterFIR, WiderKernelsGiveTheBitsOfThePlainLoop)
{
    const CSignal taps = response(40000);
    const CSignal in = noise(50001, 4);
    const auto result = [&](const CConvolverKernels& kernels) {
        CPartitionedConvolver convolver(taps, 4, m_plans, kernels);
        CDirectHead head(std::span<const double>(taps).first(39), kernels);
        CSignal out = run(convolver, in, 555);
        for (std::size_t n = 0; n < in.size(); n += 31)
            head.process(in.data() + n, out.data() + n, std::min<std::size_t>(31, in.size() - n), n % 2 == 0);
        CSignal pairs(in.size() - 1);
        kernels.takeApart(out.data(), pairs.data(), pairs.data() + pairs.size() / 2, pairs.size() / 2);
        CPhasedFIR phased;
        phased.setZeroLatency(std::span<const double>(taps).first(500), m_plans, kernels);
        CSignal mixed(in.size() - 1);
        phased.process({pairs.data(), pairs.data() + pairs.size() / 2}, {mixed.data(), mixed.data() + mixed.size() / 2},
                       mixed.size() / 2);
        kernels.interleave(mixed.data(), mixed.data() + mixed.size() / 2, out.data(), mixed.size() / 2);
        return out;
    };
    const CSignal plain = result(plainConvolverKernels());
    EXPECT_EQ(result(pairConvolverKernels()), plain);
    if (hasVectorWidth(EVectorWidth::quads)) {
        EXPECT_EQ(result(quadConvolverKernels()), plain);
    }
}

} // namespace
} // namespace qrb
