// SPDX-License-Identifier: GPL-3.0-or-later
// The loops of the follower for one vector width. Included inside a namespace that has the lanes; all widths give the same
// bits.

/// Keeps a division by silence finite.
constexpr double kGuard = 1e-15;

/// What the lines follow: all of them levels, or gains, or each what it says.
enum class ESense { level, gain, each };

/// Followers of the lines, number by number.
struct CLaneFollower {
    explicit CLaneFollower(const CFollowerLine* lines)
    {
        const auto take = [lines](auto member) {
            return lanesOf([=](std::size_t i) { return (*lines[i].follower).*member; });
        };
        const auto takeStage = [lines](auto member, std::size_t stage) {
            return lanesOf([=](std::size_t i) { return ((*lines[i].follower).*member)[stage]; });
        };
        for (std::size_t stage = 0; stage < CFollower::kStages; ++stage) {
            attack[stage] = takeStage(&CFollower::attack, stage);
            release[stage] = takeStage(&CFollower::release, stage);
            weights[stage] = takeStage(&CFollower::weights, stage);
            states[stage] = lanesOf([=](std::size_t i) { return lines[i].state->stages[stage]; });
        }
        attackOffset = take(&CFollower::attackOffset);
        attackScale = take(&CFollower::attackScale);
        releaseOffset = take(&CFollower::releaseOffset);
        releaseScale = take(&CFollower::releaseScale);
        minRate = take(&CFollower::minRate);
        norm = take(&CFollower::norm);
        last = lanesOf([=](std::size_t i) { return lines[i].state->last; });
        sense = lanesOf([=](std::size_t i) { return lines[i].isGain ? 1.0 : -1.0; });
    }

    Lanes attack[CFollower::kStages];
    Lanes release[CFollower::kStages];
    Lanes weights[CFollower::kStages];
    Lanes states[CFollower::kStages];
    Lanes attackOffset, attackScale, releaseOffset, releaseScale, minRate, norm, last, sense;
};

/// Whether a step towards `in` is one of the attack.
template <ESense kSense>
[[gnu::always_inline]] inline auto isAttacking(const CLaneFollower& c, Lanes in, Lanes s)
{
    if constexpr (kSense == ESense::level)
        return in >= s;
    else if constexpr (kSense == ESense::gain)
        return s >= in;
    else
        return c.sense * s >= c.sense * in;
}

/// The state after a stage's step towards `in`. What the step is scaled by is kept short of the division, which takes
/// most of the time that the next sample waits for.
template <ESense kSense, bool kIsHolding>
[[gnu::always_inline]] inline Lanes stepStage(const CLaneFollower& c, std::size_t stage, Lanes in, Lanes s,
                                              Lanes opening)
{
    const auto isAttack = isAttacking<kSense>(c, in, s);
    const Lanes upper = largerOf(in, s);
    const Lanes lower = smallerOf(in, s);
    const Lanes guarded = select(isAttack, upper + kGuard, upper);
    const Lanes ratio = lower * select(isAttack, c.attackScale, c.releaseScale) / guarded;
    const Lanes rate = largerOf(select(isAttack, c.attackOffset, c.releaseOffset) + ratio, c.minRate);
    Lanes release = c.release[stage];
    if constexpr (kIsHolding)
        release = select(opening >= s, release, all(0.0));
    return s + (in - s) * select(isAttack, c.attack[stage], release) * rate;
}

/// The same for a gain whose input only comes at the last moment. What can be done with the state alone stands apart
/// from it, the attack's division among that; and the release's division starts at once, while its factor is made: it
/// moves up by (in - s) * coefficient * max(offset + scale * s / in, least).
template <bool kIsHolding>
[[gnu::always_inline]] inline Lanes stepLate(const CLaneFollower& c, std::size_t stage, Lanes in, Lanes s,
                                             Lanes opening)
{
    const Lanes inverse = 1.0 / in;
    const Lanes perState = c.attackScale / (s + kGuard);
    Lanes release = c.release[stage];
    if constexpr (kIsHolding)
        release = select(opening >= s, release, all(0.0));
    const Lanes distance = in - s;
    const Lanes step = distance * release;
    const Lanes released = largerOf((s + step * c.releaseOffset) + (step * (s * c.releaseScale)) * inverse,
                                    s + step * c.minRate);
    const Lanes rate = largerOf(c.attackOffset + in * perState, c.minRate);
    const Lanes attacked = s + (distance * c.attack[stage]) * rate;
    return select(s >= in, attacked, released);
}

[[gnu::always_inline]] inline Lanes loadSamples(const CFollowerLine* lines, const double* CFollowerLine::*samples,
                                                std::size_t at)
{
    return lanesOf([=](std::size_t i) { return (lines[i].*samples)[at]; });
}

/// The same where some lines have none: they are always open.
[[gnu::always_inline]] inline Lanes loadOpenings(const CFollowerLine* lines, std::size_t at)
{
    return lanesOf([=](std::size_t i) { return lines[i].opening == nullptr ? __builtin_inf() : lines[i].opening[at]; });
}

[[gnu::always_inline]] inline void storeSamples(const CFollowerLine* lines, std::size_t at, Lanes y)
{
    eachLane(y, [=](std::size_t i, double sample) { lines[i].out[at] = sample; });
}

inline void storeStates(const CFollowerLine* lines, Lanes s1, Lanes s2, Lanes s3, Lanes s4, Lanes y)
{
    eachLane(s1, [=](std::size_t i, double s) { lines[i].state->stages[0] = s; });
    eachLane(s2, [=](std::size_t i, double s) { lines[i].state->stages[1] = s; });
    eachLane(s3, [=](std::size_t i, double s) { lines[i].state->stages[2] = s; });
    eachLane(s4, [=](std::size_t i, double s) { lines[i].state->stages[3] = s; });
    eachLane(y, [=](std::size_t i, double last) { lines[i].state->last = last; });
}

/// Each stage runs one sample behind the stage before it, so that the four steps of a turn wait for nothing but the turn
/// before; sample after sample, the processor would not look far enough ahead to overlap them. The sum of the stages
/// travels along with its sample.
template <ESense kSense, bool kIsHolding>
void follow(const CFollowerLine* lines, std::size_t count)
{
    constexpr std::size_t kLag = CFollower::kStages - 1;
    if (count == 0)
        return;
    const CLaneFollower c(lines);
    Lanes s1 = c.states[0];
    Lanes s2 = c.states[1];
    Lanes s3 = c.states[2];
    Lanes s4 = c.states[3];
    Lanes sum1 = all(0.0);
    Lanes sum2 = all(0.0);
    Lanes sum3 = all(0.0);
    Lanes y = all(0.0);
    const auto turn = [&]<bool kIsEdge>(std::size_t t) __attribute__((always_inline))
    {
        // At the edges of the block only the stages that have a sample of it.
        const auto has = [t, count](std::size_t lag) { return !kIsEdge || (t >= lag && t - lag < count); };
        if (has(3)) {
            s4 = stepStage<kSense, false>(c, 3, s3, s4, s3);
            y = (sum3 + s4) * c.norm;
            storeSamples(lines, t - 3, y);
        }
        if (has(2)) {
            s3 = stepStage<kSense, false>(c, 2, s2, s3, s2);
            sum3 = sum2 + s3 * c.weights[2];
        }
        if (has(1)) {
            s2 = stepStage<kSense, false>(c, 1, s1, s2, s1);
            sum2 = sum1 + s2 * c.weights[1];
        }
        if (has(0)) {
            const Lanes x = loadSamples(lines, &CFollowerLine::in, t);
            Lanes opening = x;
            if constexpr (kIsHolding)
                opening = kSense == ESense::each ? loadOpenings(lines, t)
                                                 : loadSamples(lines, &CFollowerLine::opening, t);
            s1 = stepStage<kSense, kIsHolding>(c, 0, x, s1, opening);
            sum1 = s1 * c.weights[0];
        }
    };
    std::size_t t = 0;
    for (; t < kLag; ++t)
        turn.template operator()<true>(t);
    for (; t < count; ++t)
        turn.template operator()<false>(t);
    for (; t < count + kLag; ++t)
        turn.template operator()<true>(t);
    storeStates(lines, s1, s2, s3, s4, y);
}

/// With feedback a sample's first step waits for the whole of the last one.
template <bool kIsInverse, bool kIsHolding>
void followFeedback(const CFollowerLine* lines, std::size_t count)
{
    const CLaneFollower c(lines);
    Lanes s1 = c.states[0];
    Lanes s2 = c.states[1];
    Lanes s3 = c.states[2];
    Lanes s4 = c.states[3];
    Lanes y = c.last;
    const auto step = [&](std::size_t stage, Lanes in, Lanes s) __attribute__((always_inline))
    {
        if constexpr (kIsInverse)
            return stepLate<false>(c, stage, in, s, in);
        else
            return stepStage<ESense::level, false>(c, stage, in, s, in);
    };
    for (std::size_t i = 0; i < count; ++i) {
        const Lanes last = y;
        const Lanes divisor = kIsInverse ? last : last + kGuard;
        const Lanes x = loadSamples(lines, &CFollowerLine::in, i) / divisor;
        if constexpr (kIsHolding)
            s1 = stepLate<true>(c, 0, x, s1, loadSamples(lines, &CFollowerLine::opening, i) / divisor);
        else
            s1 = step(0, x, s1);
        s2 = step(1, s1, s2);
        s3 = step(2, s2, s3);
        s4 = step(3, s3, s4);
        y = ((s1 * c.weights[0] + s2 * c.weights[1] + s3 * c.weights[2]) + s4) * c.norm;
        storeSamples(lines, i, last * y);
    }
    storeStates(lines, s1, s2, s3, s4, y);
}

constexpr FFollowerKernel kKernels[] = {
    follow<ESense::level, false>,
    follow<ESense::gain, false>,
    follow<ESense::gain, true>,
    followFeedback<false, false>,
    followFeedback<true, false>,
    followFeedback<true, true>,
    follow<ESense::each, true>,
};
