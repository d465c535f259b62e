// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Filters/FilterStageKinds.h"

namespace qrb {

// Functions of the stage kinds. Each stage runs one line; `state` is the memory that the kind asks for.

/// Coefficients b0, b1, b2, a1, a2 (response b / (1 + a)); all shapes keep the same memory.
void initBiquad(void* state, const double* coefficients, double sampleRate);
/// Starts a fade of 25 ms to the new coefficients, or keeps them for when the running one ends: the output goes over in
/// raised-cosine shape to a filter that itself moves from the old to the new coefficients.
void updateBiquad(void* state, const double* coefficients, double sampleRate);
template <EFilterKind Shape>
void runBiquad(void* state, const double* in, double* out, std::size_t count);
/// The same for two lines side by side, whose fades stand alike.
void runBiquadPair(EFilterKind shape, void* const* states, const double* const* in, double* const* out,
                   std::size_t count);

/// Coefficients b0, b1, a1 of a one-pole smoother, or of what it leaves of the signal times a gain.
void initFirstOrder(void* state, const double* coefficients, double sampleRate);
/// Starts a fade of 15 ms in which the coefficients move, or keeps them for when the running one ends.
void updateFirstOrder(void* state, const double* coefficients, double sampleRate);
template <EFilterKind Kind>
void runFirstOrder(void* state, const double* in, double* out, std::size_t count);

/// Bytes that a half-band stage of `count` coefficients a path keeps.
[[nodiscard]] constexpr std::size_t halfBandStateSize(std::size_t count)
{
    return 80 * (count + 1);
}
/// Coefficients of the undelayed, then of the delayed path. Also takes new ones, with no fade.
template <std::size_t Count>
void initHalfBand(void* state, const double* coefficients, double sampleRate);
template <std::size_t Count>
void runHalfBand(void* state, const double* in, double* out, std::size_t count);

/// Runs `stageCount` stages of one kind in series over lines side by side, with the bits of the kind's own `run`. None of
/// them may be fading. `states`: the lines of the first stage, then those of the second, and so on.
void runFilterSeries(const CDCDAWFilterKind& kind, void* const* states, std::size_t stageCount, std::size_t lineCount,
                     const double* const* in, double* const* out, std::size_t length);

} // namespace qrb
