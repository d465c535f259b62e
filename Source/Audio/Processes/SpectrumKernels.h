// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/VectorWidth.h"

#include <cstddef>
#include <cstdint>

namespace qrb {

/// How the frames of a spectrum are joined. The numbers are parameter states and part of the message format.
enum class ESpectrumKind : std::int32_t { rtAverage, max, average, rtMax, rtSigma };
inline constexpr std::size_t kSpectrumKindCount = 5;

/// Shares of a new frame in the smoothers of a spectrum.
struct CSpectrumRates {
    double value = 1.0;
    double variance = 1.0; ///< twice as fast as `value`
};

/// Bins that the frames of a spectrum are joined in, as they come out of the transform, without any gain. The highest
/// magnitude is that of the highest square, and a deviation is the root of a variance: these two kinds keep squares and
/// leave the roots to whoever looks. The order of bins within a step is that of the vectors.
struct CSpectrumBins {
    double* values;
    double* means; ///< of rtSigma only
};

/// The loops over the bins of a spectrum, by kind. Counts are multiples of kBinStep.
struct CSpectrumKernels {
    static constexpr std::size_t kBinStep = 4;

    /// Joins a frame in. `terms` are those of the bins, [re, im, re, im, ...]; one in front of them and one behind are
    /// read too, since the window joins neighbours: 2 t[k] - t[k - 1] - t[k + 1]. `magnitudes`: takes those of the
    /// frame, in the order of the values, where it is not null.
    using FFirst = void (*)(const double* terms, std::size_t count, const CSpectrumRates& rates, CSpectrumBins bins,
                            double* magnitudes);
    /// Joins the same frame into another spectrum.
    using FNext = void (*)(const double* magnitudes, std::size_t count, const CSpectrumRates& rates,
                           CSpectrumBins bins);

    FFirst first[kSpectrumKindCount];
    FNext next[kSpectrumKindCount];
    /// Whether all are finite numbers.
    bool (*areFinite)(const double* values, std::size_t count);
    /// Gives the bins times `gain`, or their roots times `gain`, with rising frequency.
    void (*read)(const double* values, std::size_t count, double gain, double* out);
    void (*readRoots)(const double* values, std::size_t count, double gain, double* out);
};

/// For a processor that has the width; of them `pairs` is the narrowest.
[[nodiscard]] const CSpectrumKernels& spectrumKernels(EVectorWidth width);
/// The fastest here.
[[nodiscard]] const CSpectrumKernels& spectrumKernels();

/// Only to be run where there are quads.
[[nodiscard]] const CSpectrumKernels& quadSpectrumKernels();

} // namespace qrb
