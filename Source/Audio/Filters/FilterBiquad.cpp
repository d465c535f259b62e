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

/// Coefficients of as many lines as V has lanes.
template <class V>
struct CSetLanes {
    V b0, b1, b2, a1, a2;

    void load(CBiquadState* const* states, CBiquadSet CBiquadState::*set)
    {
        b0 = gatherLanes<V>(states, [set](const CBiquadState& s) { return (s.*set).b0; });
        b1 = gatherLanes<V>(states, [set](const CBiquadState& s) { return (s.*set).b1; });
        b2 = gatherLanes<V>(states, [set](const CBiquadState& s) { return (s.*set).b2; });
        a1 = gatherLanes<V>(states, [set](const CBiquadState& s) { return (s.*set).a1; });
        a2 = gatherLanes<V>(states, [set](const CBiquadState& s) { return (s.*set).a2; });
    }
};

template <class V>
CSetLanes<V> blend(const CSetLanes<V>& from, double fromWeight, const CSetLanes<V>& to, double toWeight)
{
    return {fromWeight * from.b0 + toWeight * to.b0, fromWeight * from.b1 + toWeight * to.b1,
            fromWeight * from.b2 + toWeight * to.b2, fromWeight * from.a1 + toWeight * to.a1,
            fromWeight * from.a2 + toWeight * to.a2};
}

template <EFilterKind Shape, class V>
V step(const CSetLanes<V>& c, V& w1, V& w2, V x)
{
    const V w = (x + c.a2 * w2) + c.a1 * w1;
    const V y = biquadOutput<Shape>(c.b0, c.b1, c.b2, w, w1, w2);
    w2 = w1;
    w1 = w;
    return y;
}

/// Moves a stage on by so many samples of its fade, and into the next one where that waits.
void advanceFade(CBiquadState& state, const CFadeOscillator& oscillator, std::size_t samples)
{
    state.fade.oscillator = oscillator;
    state.fade.left -= static_cast<std::int32_t>(samples);
    if (state.fade.left > 0)
        return;
    state.current = state.target;
    if (state.fade.isPending) {
        state.fade.isPending = false;
        startFade(state, state.pending);
    }
}

/// Runs within one fade, at most to its end; the number of samples done. The lines fade alike.
template <EFilterKind Shape, class V>
std::size_t runFading(CBiquadState* const* states, const double* const* in, double* const* out, std::size_t count)
{
    constexpr std::size_t kLines = sizeof(V) / sizeof(double);
    const std::size_t length = std::min(count, static_cast<std::size_t>(states[0]->fade.left));
    CSetLanes<V> from;
    CSetLanes<V> to;
    from.load(states, &CBiquadState::current);
    to.load(states, &CBiquadState::target);
    V w1 = gatherLanes<V>(states, [](const CBiquadState& s) { return s.w1; });
    V w2 = gatherLanes<V>(states, [](const CBiquadState& s) { return s.w2; });
    V p1 = gatherLanes<V>(states, [](const CBiquadState& s) { return s.p1; });
    V p2 = gatherLanes<V>(states, [](const CBiquadState& s) { return s.p2; });
    CFadeOscillator oscillator = states[0]->fade.oscillator;
    for (std::size_t n = 0; n < length; ++n) {
        const double q = oscillator.next();
        const double oldWeight = q + 0.5;
        const double newWeight = 0.5 - q;
        const V x = sampleAt(in, n, static_cast<V*>(nullptr));
        const V before = step<Shape>(from, p1, p2, x);
        const V after = step<Shape>(blend(from, oldWeight, to, newWeight), w1, w2, x);
        store(out, n, oldWeight * before + newWeight * after);
    }
    for (std::size_t i = 0; i < kLines; ++i) {
        states[i]->w1 = laneOf(w1, i);
        states[i]->w2 = laneOf(w2, i);
        states[i]->p1 = laneOf(p1, i);
        states[i]->p2 = laneOf(p2, i);
        advanceFade(*states[i], oscillator, length);
    }
    return length;
}

/// Runs lines side by side through what fades there are, then on.
template <EFilterKind Shape, class V>
void runLines(void* const* states, const double* const* in, double* const* out, std::size_t count)
{
    constexpr std::size_t kLines = sizeof(V) / sizeof(double);
    CBiquadState* typed[kLines];
    const double* from[kLines];
    double* to[kLines];
    for (std::size_t i = 0; i < kLines; ++i) {
        typed[i] = static_cast<CBiquadState*>(states[i]);
        from[i] = in[i];
        to[i] = out[i];
    }
    while (count > 0 && typed[0]->fade.left > 0) {
        const std::size_t done = runFading<Shape, V>(typed, from, to, count);
        for (std::size_t i = 0; i < kLines; ++i) {
            from[i] += done;
            to[i] += done;
        }
        count -= done;
    }
    runLanes<CBiquadLanes, Shape, 1, V>(states, from, to, count);
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
    runLines<Shape, double>(&state, &in, &out, count);
}

void runBiquadPair(EFilterKind shape, void* const* states, const double* const* in, double* const* out,
                   std::size_t count)
{
    switch (shape) {
    case EFilterKind::biquadLowPass:
        return runLines<EFilterKind::biquadLowPass, CLanes2>(states, in, out, count);
    case EFilterKind::biquadHighPass:
        return runLines<EFilterKind::biquadHighPass, CLanes2>(states, in, out, count);
    case EFilterKind::biquadBandPass:
        return runLines<EFilterKind::biquadBandPass, CLanes2>(states, in, out, count);
    case EFilterKind::biquadNotch:
        return runLines<EFilterKind::biquadNotch, CLanes2>(states, in, out, count);
    default:
        return runLines<EFilterKind::biquad, CLanes2>(states, in, out, count);
    }
}

template void runBiquad<EFilterKind::biquad>(void*, const double*, double*, std::size_t);
template void runBiquad<EFilterKind::biquadLowPass>(void*, const double*, double*, std::size_t);
template void runBiquad<EFilterKind::biquadHighPass>(void*, const double*, double*, std::size_t);
template void runBiquad<EFilterKind::biquadBandPass>(void*, const double*, double*, std::size_t);
template void runBiquad<EFilterKind::biquadNotch>(void*, const double*, double*, std::size_t);

} // namespace qrb
