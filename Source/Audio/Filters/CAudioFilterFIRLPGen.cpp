// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CAudioFilterFIRLPGen.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace qrb {

namespace {

/// Modified Bessel function of the first kind, order 0, times exp(-x): the scale keeps wide windows finite and goes
/// out in the quotient. Abramowitz and Stegun 9.8.1 and 9.8.2.
double besselI0Scaled(double x)
{
    if (x < 3.75) {
        const double t = (x / 3.75) * (x / 3.75);
        const double sum =
            1.0 +
            t * (3.5156229 + t * (3.0899424 + t * (1.2067492 + t * (0.2659732 + t * (0.0360768 + t * 0.0045813)))));
        return sum * std::exp(-x);
    }
    const double t = 3.75 / x;
    const double high = 0.00916281 + t * (-0.02057706 + t * (0.02635537 + t * (-0.01647633 + t * 0.00392377)));
    return (0.39894228 + t * (0.01328592 + t * (0.00225319 + t * (-0.00157565 + t * high)))) / std::sqrt(x);
}

/// Kaiser window at `k` from the middle of a response that reaches `half` to each side.
double kaiser(double k, double half, double beta)
{
    const double root = 1.0 - (k / half) * (k / half);
    if (!(root >= 0.0))
        return 0.0;
    const double x = beta * std::sqrt(root);
    return besselI0Scaled(x) * std::exp(x - beta) / besselI0Scaled(beta);
}

} // namespace

void CAudioFilterFIRLPGen::design(CAudioFilterStageList& list, double sampleRate, const CAudioFilterParams& params,
                                  CDCDAWFilterWorkspace*) const
{
    double length = 0.0;
    double frequency = 0.0;
    double beta = 0.0;
    if (!params.get("length", length) || !params.get("freq", frequency) || !params.get("beta", beta))
        return;
    const double half = length * sampleRate * sampleRate / frequency * 0.125;
    if (!(half >= 0.0 && half <= kMaxHalfLength) || !std::isfinite(beta))
        return;
    beta = std::clamp(beta, 1.0, 350.0);
    const auto count = static_cast<std::size_t>(half);
    const double w = 2.0 * std::numbers::pi * frequency / sampleRate;

    CArray<double, 6> taps;
    taps.resize(2 * count + 1);
    // At the middle the window is 1, also where the response is but this one tap.
    taps[count] = w / std::numbers::pi;
    const double step = 2.0 * std::cos(w);
    double sine = std::sin(w);
    double previous = 0.0;
    for (std::size_t k = 1; k <= count; ++k) {
        const auto distance = static_cast<double>(k);
        const double tap = sine * kaiser(distance, half, beta) / (distance * std::numbers::pi);
        taps[count - k] = tap;
        taps[count + k] = tap;
        previous = std::exchange(sine, step * sine - previous);
    }
    list.appendTaps(std::move(taps));
    list.addLatency(static_cast<int>(count));
}

} // namespace qrb
