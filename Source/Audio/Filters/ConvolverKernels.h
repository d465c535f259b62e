// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <span>

namespace qrb {

namespace platform {
class CBlockTransformPlan;
}

/// Complex terms that stand side by side in a tile: their real parts, then their imaginary parts.
///
/// The spectrum of a block of B samples behind another has B terms in B / 8 tiles. The spectra of a list are stored tile
/// by tile, so that tile t of spectrum j of P begins at (t * P + j) * kSpectrumTile: a sum of products runs through
/// memory in order.
inline constexpr std::size_t kSpectrumTileBins = 8;
inline constexpr std::size_t kSpectrumTile = 2 * kSpectrumTileBins;

/// A list of `count` spectra of `tiles` tiles.
struct CSpectrumShape {
    std::size_t tiles;
    std::size_t count;
};

/// Samples behind each other that taps reach back from: tap k meets even[-k], or where there is an `odd` even[-k / 2] and
/// odd[-(k - 1) / 2] in turn.
struct CLinePair {
    const double* even;
    const double* odd = nullptr;
};

/// The loops of a convolver for one kind of processor. All kinds give the same bits.
struct CConvolverKernels {
    /// The spectrum of a block behind another, without a scale: tile t goes to list + t * stride. `work` has room for
    /// twice the block.
    void (*transform)(const platform::CBlockTransformPlan& plan, const double* older, const double* newer, double* work,
                      double* list, std::size_t stride);
    /// The newer block of a spectrum, times the block's length. `terms` is the spectrum's real parts, then its imaginary
    /// parts, and is lost.
    void (*transformBack)(const platform::CBlockTransformPlan& plan, double* terms, double* newer);
    /// terms = (or +=) the sum over j of history[(newest + j) mod count] * taps[j].
    void (*sumProducts)(const CSpectrumShape& shape, const double* history, std::size_t newest, const double* taps,
                        double* terms, bool isAdded);
    /// out[i] = (or +=) the sum over k of taps[k] times what it meets, i places on.
    void (*convolve)(std::span<const double> taps, const CLinePair& line, double* out, std::size_t count, bool isAdded);
    /// out[2i] = even[i], out[2i + 1] = odd[i]
    void (*interleave)(const double* even, const double* odd, double* out, std::size_t count);
    /// The way back.
    void (*takeApart)(const double* in, double* even, double* odd, std::size_t count);
};

[[nodiscard]] const CConvolverKernels& plainConvolverKernels();
[[nodiscard]] const CConvolverKernels& pairConvolverKernels();
/// Only where the processor has AVX2.
[[nodiscard]] const CConvolverKernels& quadConvolverKernels();
/// The fastest for this processor. Thread: any.
[[nodiscard]] const CConvolverKernels& convolverKernels();

} // namespace qrb
