// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

namespace qrb {

/// Where a half-band stage stands.
struct alignas(16) CHalfBandHead {
    double delayed;     ///< last output of the delayed path
    std::int64_t phase; ///< which of the two sets of signals the next sample meets
};

/// Memory of a half-band stage of `Count` coefficients a path: two chains of all-pass sections in z^-2. Samples of even
/// and odd number never meet in them, so each signal keeps one past value for either. Element 0 of a pair belongs to the
/// undelayed path, element 1 to the delayed one.
template <std::size_t Count>
struct CHalfBandState {
    CHalfBandHead head;
    double signals[2][Count + 1][2]; ///< input and section outputs two samples ago, for either of the two
    double coefficients[Count][2];
};

/// Whether the stage has met samples and zeros in turn, and a sample comes next.
[[nodiscard]] bool isHalfBandStuffed(const void* state, std::size_t count);
/// Whether a sample of even number comes next.
[[nodiscard]] bool isHalfBandEven(const void* state);
/// Sets to rest what samples of odd number would be made of.
void clearHalfBandOdd(void* state, std::size_t count);

} // namespace qrb
