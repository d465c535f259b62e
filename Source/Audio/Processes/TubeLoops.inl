// SPDX-License-Identifier: GPL-3.0-or-later
// The loops of the saturator for one vector width. Included inside a namespace that defines kLanes, Lanes, magnitude,
// withSignOf and isAny; all widths give the same bits.

/// The lines' view of a term.
struct CLaneTerm {
    [[nodiscard]] Lanes at(Lanes morph) const { return middle + morph * span; }

    Lanes middle, span;
};

/// The saturators of the lines, number by number. Two blockers in a row stand behind the curve unless it blocks by
/// feedback; what both let pass at once goes into the output gain.
template <bool kIsFeedback>
struct CLaneTube {
    explicit CLaneTube(const CTubeLine* lines)
    {
        for (std::size_t i = 0; i < kLanes; ++i) {
            const CTube& tube = *lines[i].tube;
            const CTubeState& state = *lines[i].state;
            const double atOnce = kIsFeedback ? 1.0 : (1.0 - tube.blocker) * (1.0 - tube.blocker);
            set(gain, i, tube.gain, 1.0);
            set(centre, i, tube.centre, 1.0);
            set(knee, i, tube.knee, 1.0);
            set(reach, i, tube.reach, 1.0);
            set(norm, i, tube.norm, atOnce);
            blocker[i] = tube.blocker;
            passed[i] = 1.0 - tube.blocker;
            feed[i] = tube.blocker / (1.0 - tube.blocker);
            lowPass[i] = tube.lowPass;
            a1[i] = tube.filterA1;
            a2[i] = tube.filterA2;
            b0[i] = tube.filterLast;
            b1[i] = tube.filterB1;
            b2[i] = tube.filterB2;
            morphBias[i] = tube.morphBias;
            s1[i] = state.blocker1;
            s2[i] = state.blocker2;
            l[i] = state.lowPass;
            w1[i] = state.filter1;
            w2[i] = state.filter2;
            last[i] = state.last;
        }
    }

    static void set(CLaneTerm& lanes, std::size_t i, const CTubeTerm& term, double scale)
    {
        lanes.middle[i] = term.middle * scale;
        lanes.span[i] = term.span * scale;
    }

    CLaneTerm gain, centre, knee, reach, norm;
    Lanes blocker, passed, feed, lowPass, a1, a2, b0, b1, b2, morphBias;
    Lanes s1, s2, l, w1, w2, last;
};

/// The morph from -0.5, the first curve, to 0.5. With q(v) = 1 + v + v^2 + v^3 + 2/3 v^4, which bends like the
/// exponential, it goes as 1 - 1 / q.
[[gnu::always_inline]] inline Lanes morphOf(Lanes control)
{
    const Lanes v = magnitude(control);
    const Lanes v2 = v * v;
    const Lanes q = (1.0 + v) * (1.0 + v2) + v2 * v2 * (2.0 / 3.0);
    return withSignOf(0.5 - 0.5 / q, control);
}

/// Linear up to `knee`, then knee + reach * (1 - 1 / q((|x| - knee) / reach)), symmetric about 0. The fraction is
/// expanded by the fourth power of `reach`, so that one division does.
[[gnu::always_inline]] inline Lanes shapeOf(Lanes x, Lanes knee, Lanes reach)
{
    const Lanes size = magnitude(x);
    const auto isBent = size > knee;
    if (!isAny(isBent))
        return x;
    const Lanes over = size - knee;
    const Lanes reach2 = reach * reach;
    const Lanes over2 = over * over;
    const Lanes below = (reach * (reach + over)) * (reach2 + over2) + over2 * over2 * (2.0 / 3.0);
    const Lanes bent = (knee + reach) - reach2 * reach2 * reach / below;
    return isBent ? withSignOf(bent, x) : x;
}

/// Each output waits for the one before it. So whatever does not is taken off that way: a sum with the morph in it is
/// split into a part at the morph's middle and one that the morph scales.
template <bool kIsFeedback, bool kIsMonitor>
void saturate(const CTubeLine* lines, std::size_t count)
{
    const CLaneTube<kIsFeedback> c(lines);
    Lanes s1 = c.s1;
    Lanes s2 = c.s2;
    Lanes l = c.l;
    Lanes w1 = c.w1;
    Lanes w2 = c.w2;
    Lanes last = c.last;
    for (std::size_t i = 0; i < count; ++i) {
        Lanes x;
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            x[lane] = lines[lane].in[i];
        l = l + (x - l) * c.lowPass;
        const Lanes driven = kIsFeedback ? l - s1 : l;

        const Lanes morph = morphOf((c.b1 * w1 + c.b2 * w2 + c.morphBias) + c.b0 * last);
        const Lanes w = (c.a1 * w1 + c.a2 * w2) + last;
        w2 = w1;
        w1 = w;

        const Lanes bent = shapeOf((driven * c.gain.middle + c.centre.middle) +
                                       morph * (driven * c.gain.span + c.centre.span),
                                   c.knee.at(morph), c.reach.at(morph));
        if constexpr (kIsFeedback) {
            s1 = s1 + c.blocker * bent;
            last = bent * c.norm.at(morph);
        } else {
            const Lanes offset = bent - s1;
            s1 = s1 + offset * c.blocker;
            const Lanes scaled = offset * c.norm.at(morph);
            const Lanes held = s2 * c.passed;
            last = scaled - held;
            s2 = held + scaled * c.feed;
        }
        const Lanes out = kIsMonitor ? morph + 0.5 : last;
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            lines[lane].out[i] = out[lane];
    }
    for (std::size_t i = kLanes; i > 0; --i) {
        const std::size_t lane = i - 1;
        *lines[lane].state = {s1[lane], s2[lane], l[lane], w1[lane], w2[lane], last[lane]};
    }
}

constexpr FTubeKernel kKernels[] = {saturate<false, false>, saturate<false, true>, saturate<true, false>,
                                    saturate<true, true>};
