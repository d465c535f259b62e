// SPDX-License-Identifier: GPL-3.0-or-later
// The loops of the saturator for one vector width. Included inside a namespace that has the lanes; all widths give the
// same bits.

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
        const auto atOnce = [lines](std::size_t i) {
            const double passes = 1.0 - lines[i].tube->blocker;
            return kIsFeedback ? 1.0 : passes * passes;
        };
        const auto takeTerm = [lines](CTubeTerm CTube::*term, auto scale) {
            return CLaneTerm{lanesOf([=](std::size_t i) { return (lines[i].tube->*term).middle * scale(i); }),
                             lanesOf([=](std::size_t i) { return (lines[i].tube->*term).span * scale(i); })};
        };
        const auto plain = [](std::size_t) { return 1.0; };
        const auto take = [lines](double CTube::*member) {
            return lanesOf([=](std::size_t i) { return lines[i].tube->*member; });
        };
        const auto takeState = [lines](double CTubeState::*member) {
            return lanesOf([=](std::size_t i) { return lines[i].state->*member; });
        };
        gain = takeTerm(&CTube::gain, plain);
        centre = takeTerm(&CTube::centre, plain);
        knee = takeTerm(&CTube::knee, plain);
        reach = takeTerm(&CTube::reach, plain);
        norm = takeTerm(&CTube::norm, atOnce);
        blocker = take(&CTube::blocker);
        passed = 1.0 - blocker;
        feed = blocker / passed;
        lowPass = take(&CTube::lowPass);
        a1 = take(&CTube::filterA1);
        a2 = take(&CTube::filterA2);
        b0 = take(&CTube::filterLast);
        b1 = take(&CTube::filterB1);
        b2 = take(&CTube::filterB2);
        morphBias = take(&CTube::morphBias);
        s1 = takeState(&CTubeState::blocker1);
        s2 = takeState(&CTubeState::blocker2);
        l = takeState(&CTubeState::lowPass);
        w1 = takeState(&CTubeState::filter1);
        w2 = takeState(&CTubeState::filter2);
        last = takeState(&CTubeState::last);
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
    return select(isBent, withSignOf(bent, x), x);
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
        const Lanes x = lanesOf([=](std::size_t lane) { return lines[lane].in[i]; });
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
        eachLane(out, [=](std::size_t lane, double sample) { lines[lane].out[i] = sample; });
    }
    const auto keep = [lines](double CTubeState::*member, Lanes values) {
        eachLane(values, [=](std::size_t i, double value) { lines[i].state->*member = value; });
    };
    keep(&CTubeState::blocker1, s1);
    keep(&CTubeState::blocker2, s2);
    keep(&CTubeState::lowPass, l);
    keep(&CTubeState::filter1, w1);
    keep(&CTubeState::filter2, w2);
    keep(&CTubeState::last, last);
}

constexpr FTubeKernel kKernels[] = {saturate<false, false>, saturate<false, true>, saturate<true, false>,
                                    saturate<true, true>};
