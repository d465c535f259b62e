// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/FilterKernels.h"
#include "Audio/Filters/FilterLanes.h"
#include "Audio/Filters/HalfBandState.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>

namespace qrb {

namespace {

template <std::size_t Count>
inline double stepHalfBand(const CLanes2* coefficients, CLanes2* signals, double& delayed, double sample)
{
    CLanes2 u{sample, sample};
#pragma GCC unroll 8
    for (std::size_t i = 0; i < Count; ++i) {
        const CLanes2 next = (coefficients[i] * u + signals[i]) - coefficients[i] * signals[i + 1];
        signals[i] = u;
        u = next;
    }
    signals[Count] = u;
    const double y = (u[0] + delayed) * 0.5;
    delayed = u[1];
    return y;
}

/// The signals that samples of even (0) or odd number (1) meet, pair after pair.
template <class Head>
auto* signalsOf(Head* head, std::size_t count, std::size_t phase)
{
    using Number = std::conditional_t<std::is_const_v<Head>, const double, double>;
    return reinterpret_cast<Number*>(head + 1) + phase * 2 * (count + 1);
}

} // namespace

bool isHalfBandEven(const void* state)
{
    return static_cast<const CHalfBandHead*>(state)->phase == 0;
}

bool isHalfBandStuffed(const void* state, std::size_t count)
{
    const auto* head = static_cast<const CHalfBandHead*>(state);
    const double* odd = signalsOf(head, count, 1);
    return head->phase == 0 && head->delayed == 0.0 &&
           std::all_of(odd, odd + 2 * (count + 1), [](double value) { return value == 0.0; });
}

void clearHalfBandOdd(void* state, std::size_t count)
{
    auto* head = static_cast<CHalfBandHead*>(state);
    for (std::size_t k = 0; k <= count; ++k) {
        signalsOf(head, count, 0)[2 * k + 1] = 0.0; // an even sample is heard a sample later in the delayed path
        signalsOf(head, count, 1)[2 * k] = 0.0;
    }
}

template <std::size_t Count>
void initHalfBand(void* state, const double* coefficients, double)
{
    static_assert(sizeof(CHalfBandState<Count>) <= halfBandStateSize(Count));
    auto& stage = *static_cast<CHalfBandState<Count>*>(state);
    stage = {};
    for (std::size_t i = 0; i < Count; ++i) {
        stage.coefficients[i][0] = coefficients[i];
        stage.coefficients[i][1] = coefficients[Count + i];
    }
}

template <std::size_t Count>
void runHalfBand(void* state, const double* in, double* out, std::size_t count)
{
    auto& stage = *static_cast<CHalfBandState<Count>*>(state);
    CLanes2 coefficients[Count];
    CLanes2 signals[2][Count + 1];
    for (std::size_t i = 0; i < Count; ++i)
        coefficients[i] = CLanes2{stage.coefficients[i][0], stage.coefficients[i][1]};
    for (std::size_t i = 0; i <= Count; ++i)
        for (std::size_t phase = 0; phase < 2; ++phase)
            signals[phase][i] = CLanes2{stage.signals[phase][i][0], stage.signals[phase][i][1]};
    CHalfBandHead head = stage.head;
    std::size_t n = 0;
    if (head.phase != 0 && count > 0) {
        out[0] = stepHalfBand<Count>(coefficients, signals[1], head.delayed, in[0]);
        n = 1;
    }
    for (; n + 2 <= count; n += 2) {
        out[n] = stepHalfBand<Count>(coefficients, signals[0], head.delayed, in[n]);
        out[n + 1] = stepHalfBand<Count>(coefficients, signals[1], head.delayed, in[n + 1]);
    }
    if (n < count)
        out[n] = stepHalfBand<Count>(coefficients, signals[0], head.delayed, in[n]);
    head.phase = (head.phase + static_cast<std::int64_t>(count)) & 1;
    stage.head = head;
    for (std::size_t i = 0; i <= Count; ++i)
        for (std::size_t phase = 0; phase < 2; ++phase)
            for (std::size_t path = 0; path < 2; ++path)
                stage.signals[phase][i][path] = signals[phase][i][path];
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
