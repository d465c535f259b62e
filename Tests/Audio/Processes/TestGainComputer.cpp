// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/GainComputer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <random>
#include <vector>

namespace qrb {
namespace {

using CSignal = std::vector<double>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::vector<EVectorWidth> widths()
{
    std::vector<EVectorWidth> found;
    for (const EVectorWidth width : {EVectorWidth::plain, EVectorWidth::pairs, EVectorWidth::quads})
        if (hasVectorWidth(width))
            found.push_back(width);
    return found;
}

double worstUlps(const CSignal& x, const CSignal& y, long double (*exact)(long double))
{
    long double worst = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const long double want = exact(x[i]);
        const double size = std::abs(static_cast<double>(want));
        worst = std::max(worst, std::abs(y[i] - want) / (std::nextafter(size, kInfinity) - size));
    }
    return static_cast<double>(worst);
}

bool areSameBits(const CSignal& a, const CSignal& b)
{
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
}

TEST(GainComputer, LogarithmAndExponentialAreExactToTheLastDigitInEveryWidth)
{
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> decades(-307.0, 308.0), nearOne(0.5, 2.0), wide(-708.0, 709.0), small(-1, 1);
    CSignal levels, exponents;
    for (int i = 0; i < 100000; ++i) {
        levels.insert(levels.end(), {std::pow(10.0, decades(random)), nearOne(random)});
        exponents.insert(exponents.end(), {wide(random), small(random)});
    }
    CSignal logs(levels.size()), exps(levels.size());
    gainKernels(EVectorWidth::plain).log(levels.data(), logs.data(), logs.size());
    gainKernels(EVectorWidth::plain).exp(exponents.data(), exps.data(), exps.size());
    EXPECT_LE(worstUlps(levels, logs, std::log), 1.0);
    EXPECT_LE(worstUlps(exponents, exps, std::exp), 1.2);

    const CSignal oddLevels{0.0, 5e-324, std::numeric_limits<double>::min(), 1.0, kInfinity, -1.0, std::nan("")};
    const CSignal oddExponents{-kInfinity, -709.0, -708.0, 0.0, 709.0, 1e-300, -0.0};
    for (const EVectorWidth width : widths()) {
        const CGainKernels& kernels = gainKernels(width);
        CSignal again(levels.size());
        kernels.log(levels.data(), again.data(), again.size());
        EXPECT_TRUE(areSameBits(again, logs));
        kernels.exp(exponents.data(), again.data(), again.size());
        EXPECT_TRUE(areSameBits(again, exps));
        CSignal odd(7);
        kernels.log(oddLevels.data(), odd.data(), 7);
        EXPECT_EQ(odd[0], -kInfinity);
        EXPECT_EQ(odd[1], -kInfinity);
        EXPECT_DOUBLE_EQ(odd[2], std::log(oddLevels[2]));
        EXPECT_EQ(odd[3], 0.0);
        EXPECT_GT(odd[4], 709.0);
        EXPECT_EQ(odd[5], -kInfinity);
        EXPECT_GT(odd[6], 709.0) << "what is no number does not spread";
        kernels.exp(oddExponents.data(), odd.data(), 7);
        EXPECT_EQ(odd[0], 0.0);
        EXPECT_EQ(odd[1], 0.0);
        EXPECT_GE(odd[2], std::numeric_limits<double>::min());
        EXPECT_EQ(odd[3], 1.0);
        EXPECT_LT(odd[4], kInfinity);
        EXPECT_EQ(odd[6], 1.0);
    }
}

/// The curve in extended precision, from the geometry alone: the circle that touches the level line at the knee's start
/// and the sloped line as far behind the threshold.
long double slowGain(double ratio, double knee, double threshold, double level, bool isDownward, bool isInverse)
{
    const long double slope = ratio > 0.9999 ? -0.0001L : ratio > 0.002 ? ratio - 1.0L : -1.0L;
    const long double decibels = 20.0L * std::log10(static_cast<long double>(level));
    const long double over = isDownward ? threshold - decibels : decibels - threshold;
    const long double half = 0.5L * knee;
    const long double end = half / std::sqrt(1.0L + slope * slope); // both tangents from the corner are equally long
    const long double radius = half / std::tan(std::atan(-slope) / 2.0L);
    long double change = 0.0L;
    if (over >= end)
        change = over * slope;
    else if (over > -half)
        change = std::sqrt(radius * radius - (over + half) * (over + half)) - radius;
    return std::pow(10.0L, (isInverse ? -change : change) / 20.0L);
}

TEST(GainComputer, FollowsTheCurveForAllRatiosKneesAndKernels)
{
    CSignal levels;
    for (double decibels = -160.0; decibels < 60.0; decibels += 0.37)
        levels.push_back(std::pow(10.0, decibels / 20.0));
    for (const double ratio : {1.0, 0.99985, 0.9, 0.5, 0.05, 0.0021, 0.001, 0.0})
        for (const double knee : {0.0, 1.5, 12.0, 40.0})
            for (const int kind : {0, 1, 2, 3}) {
                const bool isDownward = kind > 1;
                const bool isInverse = kind % 2 == 1;
                const CGainCurve curve = makeGainCurve(ratio, knee);
                CSignal plain;
                for (const EVectorWidth width : widths()) {
                    const FGainKernel run = gainKernels(width).gain[isDownward][isInverse];
                    CSignal out = levels;
                    run(curve, -17.3, out.data(), out.data(), 3);
                    run(curve, -17.3, &out[3], &out[3], out.size() - 3);
                    if (plain.empty())
                        plain = out;
                    ASSERT_TRUE(areSameBits(out, plain)) << ratio << " " << knee << " " << kind;
                }
                for (std::size_t i = 0; i < levels.size(); ++i) {
                    const long double want = slowGain(ratio, knee, -17.3, levels[i], isDownward, isInverse);
                    ASSERT_NEAR(static_cast<double>(plain[i] / want), 1.0, 1e-11) << ratio << " " << knee << " " << i;
                    const double over = 20.0 * std::log10(levels[i]) + 17.3;
                    ASSERT_NEAR(gainDecibels(curve, isDownward ? -over : over),
                                static_cast<double>((isInverse ? -20.0L : 20.0L) * std::log10(want)), 1e-9);
                }
            }
}

TEST(GainComputer, SilenceClosesOnlyWhatActsBelowTheThreshold)
{
    const CGainCurve curve = makeGainCurve(0.5, 6.0);
    const double silence = 0.0;
    for (const EVectorWidth width : widths()) {
        const double want[2][2] = {{1.0, 1.0}, {0.0, kInfinity}};
        for (const int isDownward : {0, 1})
            for (const int isInverse : {0, 1}) {
                double gain = -1.0;
                gainKernels(width).gain[isDownward][isInverse](curve, -20.0, &silence, &gain, 1);
                EXPECT_EQ(gain, want[isDownward][isInverse]);
            }
    }
}

} // namespace
} // namespace qrb
