// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

namespace qrb {

/// Complex terms that stand side by side in a tile: their real parts, then their imaginary parts.
///
/// A spectrum of a block of B samples behind another is cut into B / 8 tiles; the term at Nyquist stands in the place of
/// the imaginary part of DC. The spectra of a list are stored tile by tile, so that tile t of spectrum j of P begins at
/// (t * P + j) * kSpectrumTile: a sum of products runs through memory in order.
inline constexpr std::size_t kSpectrumTileBins = 8;
inline constexpr std::size_t kSpectrumTile = 2 * kSpectrumTileBins;

/// A list of `count` spectra of `tiles` tiles.
struct CSpectrumShape {
    std::size_t tiles;
    std::size_t count;
};

/// The loops of a convolver for one kind of processor. All kinds give the same bits.
struct CConvolverKernels {
    /// Puts a transform [re 0, im 0, re 1, ...] in place `at` of a list.
    void (*storeSpectrum)(const CSpectrumShape& shape, const double* terms, double* list, std::size_t at);
    /// terms = the sum over j of history[(newest + j) mod count] * taps[j], as a transform for the way back.
    void (*sumProducts)(const CSpectrumShape& shape, const double* history, std::size_t newest, const double* taps,
                        double* terms);
    /// out[i] = (or +=) the sum over k < tapCount of taps[k] * line[i - k] for i < count.
    void (*convolve)(const double* taps, std::size_t tapCount, const double* line, double* out, std::size_t count,
                     bool isAdded);
};

[[nodiscard]] const CConvolverKernels& plainConvolverKernels();
[[nodiscard]] const CConvolverKernels& pairConvolverKernels();
/// Only where the processor has AVX2.
[[nodiscard]] const CConvolverKernels& quadConvolverKernels();
[[nodiscard]] bool hasQuadConvolverKernels();
/// The fastest for this processor. Thread: any.
[[nodiscard]] const CConvolverKernels& convolverKernels();

} // namespace qrb
