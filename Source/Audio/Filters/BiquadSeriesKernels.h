// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Filters/FilterStates.h"

#include <cstddef>

namespace qrb {

/// Biquads of one shape in series, none of them fading. In each turn all of them run, each a sample behind the one before
/// it, so that they do not wait for one another. All kinds give the bits of the biquads one by one.
struct CBiquadSeriesKernels {
    /// Most sections in one loop: more would only move their states between registers and memory.
    static constexpr std::size_t kMaxSections = 6;

    static constexpr std::size_t kMaxLines = 8;

    /// `states` and `last`: the lines of the first section, then those of the second, and so on. `last` holds what each
    /// section gave last, which the next one gets in the first turn. `in`: what the first section gets; `out`: what the
    /// last one gives.
    using Run = void(CBiquadState* const* states, const double* const* in, double* const* out, std::size_t turns,
                     double* last);

    /// Null where there is no loop for so many sections on so many lines.
    Run* (*find)(EFilterKind shape, std::size_t sectionCount, std::size_t lineCount);
};

[[nodiscard]] const CBiquadSeriesKernels& pairBiquadSeriesKernels();
/// Only where the processor has AVX2.
[[nodiscard]] const CBiquadSeriesKernels& quadBiquadSeriesKernels();
/// The fastest for this processor. Thread: any.
[[nodiscard]] const CBiquadSeriesKernels& biquadSeriesKernels();

/// Runs biquads of one shape in series, none of them fading, over `lineCount` lines, if the kernels have a loop for them
/// and it pays for so short a block; false otherwise. `states`: the lines of the first section, then those of the second.
[[nodiscard]] bool runBiquadSeries(const CBiquadSeriesKernels& kernels, EFilterKind shape, CBiquadState* const* states,
                                   std::size_t sectionCount, std::size_t lineCount, const double* const* in,
                                   double* const* out, std::size_t length);

} // namespace qrb
