// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace qrb {

/// Shares of a new value in the smoothers of a meter, a sample at a time.
struct CMeterRates {
    double mean = 1.0;
    double release = 1.0;
    double bias = 1.0;
};

/// What a meter knows of its signal: all of them squares.
struct CMeterLevels {
    double mean = 0.0;
    double mean2 = 0.0; ///< of the signal that a ratio relates to
    double bias = 0.0;  ///< long-term mean
    double tracker = 0.0;
    double chunkPeak = 0.0; ///< highest, or lowest, of the running period

    void setAll(double value) { *this = {value, value, value, value, value}; }
};

/// Takes `count` samples into the levels. `b`: the signal that a ratio relates to; the others don't read it.
using FMeterKernel = void (*)(const CMeterRates& rates, CMeterLevels& levels, const double* a, const double* b,
                              int count);

/// Mean square with its falling tracker; peaks are maxima.
void measureLevel(const CMeterRates& rates, CMeterLevels& levels, const double* a, const double* b, int count);
/// The same turned round, for gains: peaks are minima.
void measureGain(const CMeterRates& rates, CMeterLevels& levels, const double* a, const double* b, int count);
/// A gain against its long-term mean.
void measureGainWithBias(const CMeterRates& rates, CMeterLevels& levels, const double* a, const double* b, int count);
/// Mean squares of two signals.
void measureRatio(const CMeterRates& rates, CMeterLevels& levels, const double* a, const double* b, int count);
/// Their ratio against its long-term mean; peaks are minima.
void measureRatioWithBias(const CMeterRates& rates, CMeterLevels& levels, const double* a, const double* b, int count);

/// Ratio of the means of two signals, 1 where both are silent.
[[nodiscard]] double meanRatio(const CMeterLevels& levels);

} // namespace qrb
