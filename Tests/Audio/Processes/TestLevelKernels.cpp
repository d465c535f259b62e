// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/LineMath.h"
#include "Audio/Processes/MergeLines.h"
#include "Audio/Processes/OnePole.h"
#include "Audio/Processes/RMSDetector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <numbers>
#include <numeric>
#include <random>
#include <vector>

namespace qrb {
namespace {

using CSignal = std::vector<double>;

TEST(OnePole, HalvesThePowerAtItsFrequency)
{
    for (const double frequency : {0.5, 20.0, 1000.0, 20000.0}) {
        const double w = 2.0 * std::numbers::pi * frequency / 48000.0;
        const double c = onePoleCoefficient(frequency, 48000.0);
        EXPECT_NEAR(std::norm(c / (1.0 - (1.0 - c) * std::polar(1.0, -w))), 0.5, 1e-6) << frequency;
    }
}

TEST(RMSDetector, RisesAsItsPolesSayAndContinuesAcrossCutsAtAnyWidth)
{
    const double c = onePoleCoefficient(100.0, 44100.0);
    for (const EVectorWidth width : {EVectorWidth::pairs, EVectorWidth::quads}) {
        if (!hasVectorWidth(width))
            continue;
        constexpr std::size_t kLines = 7;
        CSignal levels[2][kLines]; // of one and of two poles
        for (int poles = 0; poles < 2; ++poles) {
            CRMSState states[kLines];
            for (CSignal& level : levels[poles])
                level.assign(500, -2.0);
            using CCut = std::array<std::size_t, 3>; // start, length, lines in the first of two runs
            for (const auto& [start, count, split] : {CCut{0, 1, 7}, CCut{1, 332, 5}, CCut{333, 167, 3}}) {
                CRMSLine lines[kLines];
                for (std::size_t i = 0; i < kLines; ++i)
                    lines[i] = {c, &states[i], &levels[poles][i][start], &levels[poles][i][start]};
                detectRMS(poles == 1, {lines, split}, count, width);
                detectRMS(poles == 1, {lines + split, kLines - split}, count, width);
            }
        }
        for (std::size_t line = 0; line < kLines; ++line)
            for (std::size_t i = 0; i < 500; ++i) {
                const auto n = static_cast<double>(i + 1);
                const double rest = std::pow(1.0 - c, n);
                ASSERT_NEAR(levels[0][line][i], 2.0 * std::sqrt(1.0 - rest), 1e-12) << i;
                ASSERT_NEAR(levels[1][line][i], 2.0 * std::sqrt(1.0 - rest * (1.0 + n * c)), 1e-12) << i;
            }
    }
    CRMSState silent;
    CSignal zeros(5, 0.0);
    const CRMSLine line{c, &silent, zeros.data(), zeros.data()};
    detectRMS(false, {&line, 1}, zeros.size());
    EXPECT_EQ(zeros, CSignal(5, 1e-15)) << "never zero, for the logarithm behind it";
}

TEST(MergeLines, TakesExtremesAndMeanOverAnyNumberOfLines)
{
    std::mt19937 generator(5);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    std::vector<CSignal> signals(16, CSignal(37));
    std::vector<const double*> lines;
    for (CSignal& signal : signals) {
        std::ranges::generate(signal, [&] { return uniform(generator); });
        lines.push_back(signal.data());
    }
    for (std::size_t count = 1; count <= lines.size(); ++count) {
        CSignal highest(37), lowest(37), mean(37);
        maximumOfLines({lines.data(), count}, highest);
        minimumOfLines({lines.data(), count}, lowest);
        meanOfLines({lines.data(), count}, mean);
        for (std::size_t i = 0; i < 37; ++i) {
            CSignal column;
            for (std::size_t line = 0; line < count; ++line)
                column.push_back(lines[line][i]);
            ASSERT_EQ(highest[i], std::ranges::max(column)) << count;
            ASSERT_EQ(lowest[i], std::ranges::min(column)) << count;
            ASSERT_NEAR(mean[i], std::accumulate(column.begin(), column.end(), 0.0) / static_cast<double>(count),
                        1e-15);
        }
    }
}

TEST(LineMath, DecodingUndoesEncodingAlsoInPlace)
{
    CSignal left = {1.0, -0.25, 0.0, 0.1, 1e-9};
    CSignal right = {1.0, 0.75, -0.5, 0.7, -3.0};
    const CSignal leftBefore = left;
    const CSignal rightBefore = right;
    encodeMidSide(left, right, left, right);
    EXPECT_EQ(left[0], 1.0) << "equal channels are all mid";
    EXPECT_EQ(right[0], 0.0);
    EXPECT_EQ(left[1], 0.25);
    EXPECT_EQ(right[1], -0.5) << "side is half of first less second";
    decodeMidSide(left, right, left, right);
    for (std::size_t i = 0; i < left.size(); ++i) {
        EXPECT_NEAR(left[i], leftBefore[i], 1e-15);
        EXPECT_NEAR(right[i], rightBefore[i], 1e-15);
    }
}

} // namespace
} // namespace qrb
