// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/MeterKernels.h"

#include <algorithm>

namespace qrb {

namespace {

/// Far below the square of anything that can be heard; keeps ratios of silence at 1.
constexpr double kFloor = 1e-15;

void followDown(const CMeterRates& rates, CMeterLevels& levels, double sample)
{
    levels.mean += (sample - levels.mean) * rates.mean;
    if (levels.mean < levels.tracker)
        levels.tracker = levels.mean;
    else
        levels.tracker += (levels.mean - levels.tracker) * rates.release;
    levels.chunkPeak = std::min({sample, levels.chunkPeak, levels.tracker});
}

void followMeans(const CMeterRates& rates, CMeterLevels& levels, double a, double b)
{
    levels.mean += (a * a - levels.mean) * rates.mean;
    levels.mean2 += (b * b - levels.mean2) * rates.mean;
}

} // namespace

double meanRatio(const CMeterLevels& levels)
{
    return (kFloor + levels.mean) / (kFloor + levels.mean2);
}

// The levels live in a copy for the length of the loop, so that they can stay in registers.

void measureLevel(const CMeterRates& rates, CMeterLevels& levels, const double* a, const double*, int count)
{
    CMeterLevels now = levels;
    for (int i = 0; i < count; ++i) {
        const double square = a[i] * a[i];
        now.mean += (square - now.mean) * rates.mean;
        if (now.mean > now.tracker)
            now.tracker = now.mean;
        else
            now.tracker += (now.mean - now.tracker) * rates.release;
        now.chunkPeak = std::max({square, now.chunkPeak, now.tracker});
    }
    levels = now;
}

void measureGain(const CMeterRates& rates, CMeterLevels& levels, const double* a, const double*, int count)
{
    CMeterLevels now = levels;
    for (int i = 0; i < count; ++i)
        followDown(rates, now, a[i] * a[i]);
    levels = now;
}

void measureGainWithBias(const CMeterRates& rates, CMeterLevels& levels, const double* a, const double*, int count)
{
    CMeterLevels now = levels;
    for (int i = 0; i < count; ++i) {
        const double square = a[i] * a[i];
        const double ratio = (kFloor + square) / (kFloor + now.bias);
        now.bias += (square - now.bias) * rates.bias;
        followDown(rates, now, ratio);
    }
    levels = now;
}

void measureRatio(const CMeterRates& rates, CMeterLevels& levels, const double* a, const double* b, int count)
{
    CMeterLevels now = levels;
    for (int i = 0; i < count; ++i)
        followMeans(rates, now, a[i], b[i]);
    levels = now;
}

void measureRatioWithBias(const CMeterRates& rates, CMeterLevels& levels, const double* a, const double* b, int count)
{
    CMeterLevels now = levels;
    for (int i = 0; i < count; ++i) {
        followMeans(rates, now, a[i], b[i]);
        const double ratio = meanRatio(now);
        now.bias += (ratio - now.bias) * rates.bias;
        now.tracker = ratio / now.bias;
        now.chunkPeak = std::min(now.tracker, now.chunkPeak);
    }
    levels = now;
}

} // namespace qrb
