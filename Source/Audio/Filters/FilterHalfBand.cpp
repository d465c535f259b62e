// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/FilterKernels.h"
#include "Audio/Filters/FilterLanes.h"

#include <algorithm>
#include <cstdint>

namespace qrb {

namespace {

/// Two all-pass paths in z^-2 side by side. Samples of even and odd number never meet in them, so each signal keeps one
/// past value for either.
template <std::size_t Count>
struct CHalfBandState {
    CLanes2 coefficients[Count];   ///< undelayed path, delayed path
    CLanes2 signals[2][Count + 1]; ///< input and section outputs two samples ago
    double delayed;                ///< last output of the delayed path
    std::int64_t phase;            ///< which of the two the next sample meets
};

template <std::size_t Count>
inline double stepHalfBand(const CLanes2* coefficients, CLanes2* signals, double& delayed, double sample)
{
    CLanes2 u{sample, sample};
#pragma GCC unroll 8
    for (std::size_t i = 0; i < Count; ++i) {
        const CLanes2 next = (u - signals[i + 1]) * coefficients[i] + signals[i];
        signals[i] = u;
        u = next;
    }
    signals[Count] = u;
    const double y = (u[0] + delayed) * 0.5;
    delayed = u[1];
    return y;
}

} // namespace

template <std::size_t Count>
void initHalfBand(void* state, const double* coefficients, double)
{
    static_assert(sizeof(CHalfBandState<Count>) <= halfBandStateSize(Count));
    auto& stage = *static_cast<CHalfBandState<Count>*>(state);
    stage = {};
    for (std::size_t i = 0; i < Count; ++i)
        stage.coefficients[i] = CLanes2{coefficients[i], coefficients[Count + i]};
}

template <std::size_t Count>
void runHalfBand(void* state, const double* in, double* out, std::size_t count)
{
    auto& stage = *static_cast<CHalfBandState<Count>*>(state);
    CHalfBandState<Count> s = stage;
    std::size_t n = 0;
    if (s.phase != 0 && count > 0) {
        out[0] = stepHalfBand<Count>(s.coefficients, s.signals[1], s.delayed, in[0]);
        n = 1;
    }
    for (; n + 2 <= count; n += 2) {
        out[n] = stepHalfBand<Count>(s.coefficients, s.signals[0], s.delayed, in[n]);
        out[n + 1] = stepHalfBand<Count>(s.coefficients, s.signals[1], s.delayed, in[n + 1]);
    }
    if (n < count)
        out[n] = stepHalfBand<Count>(s.coefficients, s.signals[0], s.delayed, in[n]);
    s.phase = (s.phase + static_cast<std::int64_t>(count)) & 1;
    stage = s;
}

template void initHalfBand<1>(void*, const double*, double);
template void initHalfBand<2>(void*, const double*, double);
template void initHalfBand<3>(void*, const double*, double);
template void initHalfBand<4>(void*, const double*, double);
template void initHalfBand<5>(void*, const double*, double);
template void initHalfBand<6>(void*, const double*, double);
template void initHalfBand<7>(void*, const double*, double);
template void initHalfBand<8>(void*, const double*, double);
template void runHalfBand<1>(void*, const double*, double*, std::size_t);
template void runHalfBand<2>(void*, const double*, double*, std::size_t);
template void runHalfBand<3>(void*, const double*, double*, std::size_t);
template void runHalfBand<4>(void*, const double*, double*, std::size_t);
template void runHalfBand<5>(void*, const double*, double*, std::size_t);
template void runHalfBand<6>(void*, const double*, double*, std::size_t);
template void runHalfBand<7>(void*, const double*, double*, std::size_t);
template void runHalfBand<8>(void*, const double*, double*, std::size_t);

} // namespace qrb
