// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

namespace qrb {

/// What a stage is at run time; the numbers are the keys of the kinds in a workspace.
enum class EFilterKind : std::uint8_t {
    finite = 0,    ///< taps only: no recursive stage, nothing runs it here
    halfBand1 = 1, ///< 1 coefficient a path; up to halfBand8 in steps of one
    halfBand8 = 8,
    lowPass1 = 9,
    highPass1 = 10,
    biquad = 11,
    biquadLowPass = 12,
    biquadHighPass = 13,
    biquadBandPass = 14,
    biquadNotch = 15,
    highPass1Gain = 16
};

/// A function of a stage kind under its name, with the counts of its two argument groups.
template <class F>
struct CDCDAWFunction {
    const char* name = nullptr;
    F* function = nullptr;
    int inputCount = 0;
    int outputCount = 0;
};

/// One kind of recursive stage: how its state memory is set up, takes new coefficients and runs. The memory of a stage
/// is `stateSize` bytes, aligned to 16; it is plain bytes, so a stage can be moved by copying them.
struct CDCDAWFilterKind {
    /// `coefficients`: the feed-forward numbers, then the feedback numbers.
    using Init = void(void* state, const double* coefficients, double sampleRate);
    using Update = void(void* state, const double* coefficients, double sampleRate);
    /// `in` and `out` may be the same buffer.
    using Run = void(void* state, const double* in, double* out, std::size_t count);

    EFilterKind id = EFilterKind::finite;
    CDCDAWFunction<Init> init;
    CDCDAWFunction<Update> update;
    CDCDAWFunction<Run> run;
    std::size_t stateSize = 0;
};

/// The kind of that number, or null for finite stages and numbers that mean nothing. Thread: any.
[[nodiscard]] const CDCDAWFilterKind* filterKind(EFilterKind id);

} // namespace qrb
