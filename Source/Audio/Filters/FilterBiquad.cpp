// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/FilterKernels.h"
#include "Audio/Filters/FilterLanes.h"
#include "Core/CNumberText.h"

#include <algorithm>

namespace qrb {

namespace {

constexpr double kFadeSeconds = 0.025;

CBiquadSet readSet(const double* coefficients)
{
    return {coefficients[0], coefficients[1], coefficients[2], -coefficients[3], -coefficients[4]};
}

void startFade(CBiquadState& state, const CBiquadSet& target)
{
    state.target = target;
    state.p1 = state.w1;
    state.p2 = state.w2;
    state.fade.start();
}

CBiquadSet blend(const CBiquadSet& from, double fromWeight, const CBiquadSet& to, double toWeight)
{
    return {fromWeight * from.b0 + toWeight * to.b0, fromWeight * from.b1 + toWeight * to.b1,
            fromWeight * from.b2 + toWeight * to.b2, fromWeight * from.a1 + toWeight * to.a1,
            fromWeight * from.a2 + toWeight * to.a2};
}

template <EFilterKind Shape>
double step(const CBiquadSet& c, double& w1, double& w2, double x)
{
    const double w = (x + c.a2 * w2) + c.a1 * w1;
    const double y = biquadOutput<Shape>(c.b0, c.b1, c.b2, w, w1, w2);
    w2 = w1;
    w1 = w;
    return y;
}

/// Runs within one fade, at most to its end; the number of samples done.
template <EFilterKind Shape>
std::size_t runFading(CBiquadState& state, const double* in, double* out, std::size_t count)
{
    const std::size_t length = std::min(count, static_cast<std::size_t>(state.fade.left));
    CBiquadState s = state;
    for (std::size_t n = 0; n < length; ++n) {
        const double q = s.fade.oscillator.next();
        const double oldWeight = q + 0.5;
        const double newWeight = 0.5 - q;
        const double x = in[n];
        const double before = step<Shape>(s.current, s.p1, s.p2, x);
        const double after = step<Shape>(blend(s.current, oldWeight, s.target, newWeight), s.w1, s.w2, x);
        out[n] = oldWeight * before + newWeight * after;
    }
    s.fade.left -= static_cast<std::int32_t>(length);
    if (s.fade.left == 0) {
        s.current = s.target;
        if (s.fade.isPending) {
            s.fade.isPending = false;
            startFade(s, s.pending);
        }
    }
    state = s;
    return length;
}

} // namespace

void initBiquad(void* state, const double* coefficients, double sampleRate)
{
    auto& biquad = *static_cast<CBiquadState*>(state);
    biquad = {};
    biquad.current = readSet(coefficients);
    biquad.fade.length = std::max(1, roundToInt(kFadeSeconds * sampleRate));
}

void updateBiquad(void* state, const double* coefficients, double)
{
    auto& biquad = *static_cast<CBiquadState*>(state);
    if (biquad.fade.left > 0) {
        biquad.pending = readSet(coefficients);
        biquad.fade.isPending = true;
    } else {
        startFade(biquad, readSet(coefficients));
    }
}

template <EFilterKind Shape>
void runBiquad(void* state, const double* in, double* out, std::size_t count)
{
    auto& biquad = *static_cast<CBiquadState*>(state);
    while (count > 0 && biquad.fade.left > 0) {
        const std::size_t done = runFading<Shape>(biquad, in, out, count);
        in += done;
        out += done;
        count -= done;
    }
    runLanes<CBiquadLanes, Shape, 1, double>(&state, &in, &out, count);
}

template void runBiquad<EFilterKind::biquad>(void*, const double*, double*, std::size_t);
template void runBiquad<EFilterKind::biquadLowPass>(void*, const double*, double*, std::size_t);
template void runBiquad<EFilterKind::biquadHighPass>(void*, const double*, double*, std::size_t);
template void runBiquad<EFilterKind::biquadBandPass>(void*, const double*, double*, std::size_t);
template void runBiquad<EFilterKind::biquadNotch>(void*, const double*, double*, std::size_t);

} // namespace qrb
