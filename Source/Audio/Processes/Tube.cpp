// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/Tube.h"

#include <smmintrin.h>

#include <cmath>

namespace qrb {

namespace {

__m128d both(double x)
{
    return _mm_set1_pd(x);
}

__m128d magnitude(__m128d x)
{
    return _mm_andnot_pd(both(-0.0), x);
}

__m128d withSignOf(__m128d x, __m128d sign)
{
    return _mm_or_pd(x, _mm_and_pd(both(-0.0), sign));
}

/// Both lines' view of a term.
struct CTermPair {
    explicit CTermPair(const CTubeTerm& term) : middle(both(term.middle)), span(both(term.span)) {}
    [[nodiscard]] __m128d at(__m128d morph) const { return middle + morph * span; }

    __m128d middle, span;
};

/// The morph from -0.5, the first curve, to 0.5. With q(v) = 1 + v + v^2 + v^3 + 2/3 v^4, which bends like the
/// exponential, it goes as 1 - 1 / q.
[[gnu::always_inline]] inline __m128d morphOf(__m128d control)
{
    const __m128d v = magnitude(control);
    const __m128d v2 = v * v;
    const __m128d q = (1.0 + v) * (1.0 + v2) + v2 * v2 * (2.0 / 3.0);
    return withSignOf(0.5 - 0.5 / q, control);
}

/// Linear up to `knee`, then knee + reach * (1 - 1 / q((|x| - knee) / reach)), symmetric about 0. The fraction is
/// expanded by the fourth power of `reach`, so that one division does.
[[gnu::always_inline]] inline __m128d shapeOf(__m128d x, __m128d knee, __m128d reach)
{
    const __m128d size = magnitude(x);
    const __m128d isBent = _mm_cmpgt_pd(size, knee);
    if (_mm_movemask_pd(isBent) == 0)
        return x;
    const __m128d over = size - knee;
    const __m128d reach2 = reach * reach;
    const __m128d over2 = over * over;
    const __m128d below = (reach * (reach + over)) * (reach2 + over2) + over2 * over2 * (2.0 / 3.0);
    const __m128d bent = (knee + reach) - reach2 * reach2 * reach / below;
    return _mm_blendv_pd(x, withSignOf(bent, x), isBent);
}

[[gnu::always_inline]] inline __m128d loadPair(const CTubeLines& lines, double CTubeState::*member)
{
    return _mm_set_pd(lines.states[1]->*member, lines.states[0]->*member);
}

[[gnu::always_inline]] inline void storePair(const CTubeLines& lines, double CTubeState::*member, __m128d value)
{
    lines.states[0]->*member = value[0];
    lines.states[1]->*member = value[1];
}

/// Each output waits for the one before it. So whatever does not is taken off that way: a sum with the morph in it is
/// split into a part at the morph's middle and one that the morph scales.
template <bool kIsFeedback, bool kIsMonitor>
void saturate(const CTube& tube, const CTubeLines& lines, std::size_t count)
{
    const CTermPair gain(tube.gain), centre(tube.centre), knee(tube.knee), reach(tube.reach);
    const __m128d blocker = both(tube.blocker);
    const __m128d passed = both(1.0 - tube.blocker);
    // Two blockers in a row stand behind the curve; what both let pass at once goes into the output gain.
    const double atOnce = kIsFeedback ? 1.0 : (1.0 - tube.blocker) * (1.0 - tube.blocker);
    const CTermPair norm(CTubeTerm{tube.norm.middle * atOnce, tube.norm.span * atOnce});
    const __m128d feed = both(tube.blocker / (1.0 - tube.blocker));
    const __m128d lowPass = both(tube.lowPass);
    const __m128d a1 = both(tube.filterA1), a2 = both(tube.filterA2);
    const __m128d b0 = both(tube.filterLast), b1 = both(tube.filterB1), b2 = both(tube.filterB2);
    const __m128d morphBias = both(tube.morphBias);

    __m128d s1 = loadPair(lines, &CTubeState::blocker1);
    __m128d s2 = loadPair(lines, &CTubeState::blocker2);
    __m128d l = loadPair(lines, &CTubeState::lowPass);
    __m128d w1 = loadPair(lines, &CTubeState::filter1);
    __m128d w2 = loadPair(lines, &CTubeState::filter2);
    __m128d last = loadPair(lines, &CTubeState::last);
    for (std::size_t i = 0; i < count; ++i) {
        const __m128d x = _mm_set_pd(lines.in[1][i], lines.in[0][i]);
        l = l + (x - l) * lowPass;
        const __m128d driven = kIsFeedback ? l - s1 : l;

        const __m128d morph = morphOf((b1 * w1 + b2 * w2 + morphBias) + b0 * last);
        const __m128d w = (a1 * w1 + a2 * w2) + last;
        w2 = w1;
        w1 = w;

        const __m128d bent =
            shapeOf((driven * gain.middle + centre.middle) + morph * (driven * gain.span + centre.span), knee.at(morph),
                    reach.at(morph));
        if constexpr (kIsFeedback) {
            s1 = s1 + blocker * bent;
            last = bent * norm.at(morph);
        } else {
            const __m128d offset = bent - s1;
            s1 = s1 + offset * blocker;
            const __m128d scaled = offset * norm.at(morph);
            const __m128d held = s2 * passed;
            last = scaled - held;
            s2 = held + scaled * feed;
        }
        const __m128d out = kIsMonitor ? morph + 0.5 : last;
        _mm_storel_pd(lines.out[0] + i, out);
        _mm_storeh_pd(lines.out[1] + i, out);
    }
    storePair(lines, &CTubeState::blocker1, s1);
    storePair(lines, &CTubeState::blocker2, s2);
    storePair(lines, &CTubeState::lowPass, l);
    storePair(lines, &CTubeState::filter1, w1);
    storePair(lines, &CTubeState::filter2, w2);
    storePair(lines, &CTubeState::last, last);
}

} // namespace

CTubeState restOfTube(const CTube& tube, bool isBlockedByFeedback)
{
    // In the loop's own arithmetic, so that silence stays silent to the last bit. In front of the curve the blocker takes
    // the curve's centre away, behind it what the curve makes of that.
    const __m128d morph = morphOf(both(tube.morphBias));
    const __m128d centre = CTermPair(tube.centre).at(morph);
    const __m128d rest = isBlockedByFeedback
                             ? centre / CTermPair(tube.gain).at(morph)
                             : shapeOf(centre, CTermPair(tube.knee).at(morph), CTermPair(tube.reach).at(morph));
    return {rest[0], 0.0, 0.0, 0.0, 0.0, 0.0};
}

FTubeKernel tubeKernel(bool isBlockedByFeedback, bool isMonitor)
{
    if (isBlockedByFeedback)
        return isMonitor ? saturate<true, true> : saturate<true, false>;
    return isMonitor ? saturate<false, true> : saturate<false, false>;
}

} // namespace qrb
