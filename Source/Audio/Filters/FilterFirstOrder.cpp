// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/FilterKernels.h"
#include "Audio/Filters/FilterLanes.h"
#include "Core/CNumberText.h"

#include <algorithm>

namespace qrb {

namespace {

constexpr double kFadeSeconds = 0.015;

/// From b0, b1, a1.
CFirstOrderSet readSet(const double* coefficients)
{
    return {1.0 + coefficients[2], coefficients[1] / coefficients[2]};
}

void startFade(CFirstOrderState& state, const CFirstOrderSet& target)
{
    state.target = target;
    state.fade.start();
}

/// Runs within one fade, at most to its end; the number of samples done.
template <EFilterKind Kind>
std::size_t runFading(CFirstOrderState& state, const double* in, double* out, std::size_t count)
{
    const std::size_t length = std::min(count, static_cast<std::size_t>(state.fade.left));
    CFirstOrderState s = state;
    for (std::size_t n = 0; n < length; ++n) {
        const double q = s.fade.oscillator.next();
        const double oldWeight = q + 0.5;
        const double newWeight = 0.5 - q;
        const double x = in[n];
        s.z += (x - s.z) * (oldWeight * s.current.k + newWeight * s.target.k);
        out[n] = firstOrderOutput<Kind>(oldWeight * s.current.g + newWeight * s.target.g, x, s.z);
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

void initFirstOrder(void* state, const double* coefficients, double sampleRate)
{
    auto& stage = *static_cast<CFirstOrderState*>(state);
    stage = {};
    stage.current = readSet(coefficients);
    stage.fade.length = std::max(1, roundToInt(kFadeSeconds * sampleRate));
}

void updateFirstOrder(void* state, const double* coefficients, double)
{
    auto& stage = *static_cast<CFirstOrderState*>(state);
    if (stage.fade.left > 0) {
        stage.pending = readSet(coefficients);
        stage.fade.isPending = true;
    } else {
        startFade(stage, readSet(coefficients));
    }
}

template <EFilterKind Kind>
void runFirstOrder(void* state, const double* in, double* out, std::size_t count)
{
    auto& stage = *static_cast<CFirstOrderState*>(state);
    while (count > 0 && stage.fade.left > 0) {
        const std::size_t done = runFading<Kind>(stage, in, out, count);
        in += done;
        out += done;
        count -= done;
    }
    runLanes<CFirstOrderLanes, Kind, 1, double>(&state, &in, &out, count);
}

template void runFirstOrder<EFilterKind::lowPass1>(void*, const double*, double*, std::size_t);
template void runFirstOrder<EFilterKind::highPass1>(void*, const double*, double*, std::size_t);
template void runFirstOrder<EFilterKind::highPass1Gain>(void*, const double*, double*, std::size_t);

} // namespace qrb
