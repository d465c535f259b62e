// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/EnvelopeFollower.h"

#include "Audio/Processes/OnePole.h"

#include <emmintrin.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qrb {

namespace {

constexpr double kPi = std::numbers::pi;
/// Keeps a division by silence finite.
constexpr double kGuard = 1e-15;
constexpr double kStageTimes[CFollower::kStages] = {0.25, 0.5, 1.0, 2.0};

double attackCoefficient(double seconds, double sampleRate)
{
    return onePoleCoefficient(std::min(2.0 * kPi / (sampleRate * seconds), kPi));
}

double releaseCoefficient(double seconds, double sampleRate)
{
    // The law holds beyond half the sample rate too, where it folds back: near the rate itself it would freeze the stage.
    constexpr double kLeast = 0.02;
    const double w = 2.0 * kPi / (sampleRate * seconds);
    if (!std::isfinite(w))
        return kLeast;
    return w > kPi ? std::max(onePoleCoefficient(w), kLeast) : onePoleCoefficient(w);
}

struct CModeTerms {
    double offset, scale, time;
};

CModeTerms modeTerms(EFollowerMode mode)
{
    switch (mode) {
    case EFollowerMode::fast:
        return {1.0, 0.0, 1.0};
    case EFollowerMode::normal:
        return {0.0, 1.0, 1.0};
    case EFollowerMode::slow:
        break;
    }
    return {1.0, -1.0, 0.5}; // half the time makes up for the scale
}

void setWeights(CFollower& follower, double punch)
{
    // Which of the first three stages sound at each step of punch; between steps they cross over by a raised cosine.
    constexpr int kSteps = 6;
    constexpr double kTables[3][kSteps] = {{1, 1, 1, 0, 0, 0}, {0, 1, 1, 1, 0, 0}, {0, 0, 1, 1, 1, 0}};
    const double position = std::clamp(kSteps * punch - 0.5, 0.0, kSteps - 1.0);
    const int step = std::min(static_cast<int>(position), kSteps - 2);
    const double fade = 0.5 + 0.5 * std::cos((position - step) * kPi);
    double sum = 1.0;
    for (int i = 0; i < 3; ++i) {
        const double from = kTables[i][step];
        const double to = kTables[i][step + 1];
        follower.weights[i] = from == to ? from : from > to ? fade : 1.0 - fade;
        sum += follower.weights[i];
    }
    follower.weights[3] = 1.0;
    follower.norm = 1.0 / sum;
}

__m128d both(double x)
{
    return _mm_set1_pd(x);
}

/// A follower's numbers for both lines.
struct CPairs {
    explicit CPairs(const CFollower& follower)
        : attackOffset(both(follower.attackOffset)), attackScale(both(follower.attackScale)),
          releaseOffset(both(follower.releaseOffset)), releaseScale(both(follower.releaseScale)),
          minRate(both(follower.minRate)), norm(both(follower.norm))
    {
        for (int i = 0; i < CFollower::kStages; ++i) {
            attack[i] = both(follower.attack[i]);
            release[i] = both(follower.release[i]);
            weights[i] = both(follower.weights[i]);
        }
    }

    __m128d attack[CFollower::kStages];
    __m128d release[CFollower::kStages];
    __m128d weights[CFollower::kStages];
    __m128d attackOffset, attackScale, releaseOffset, releaseScale, minRate, norm;
};

/// The state after a stage's step towards `in`. What the step is scaled by is kept short of the division, which takes
/// most of the time that the next sample waits for.
template <bool kIsInverse, bool kIsHolding>
[[gnu::always_inline]] inline __m128d stepStage(const CPairs& c, int stage, __m128d in, __m128d s, __m128d opening)
{
    const auto isAttack = kIsInverse ? s >= in : in >= s;
    const __m128d upper = _mm_max_pd(in, s);
    const __m128d lower = _mm_min_pd(in, s);
    const __m128d guarded = isAttack ? upper + kGuard : upper;
    const __m128d ratio = lower * (isAttack ? c.attackScale : c.releaseScale) / guarded;
    const __m128d rate = _mm_max_pd((isAttack ? c.attackOffset : c.releaseOffset) + ratio, c.minRate);
    __m128d release = c.release[stage];
    if constexpr (kIsHolding)
        release = opening >= s ? release : both(0.0);
    return s + (in - s) * (isAttack ? c.attack[stage] : release) * rate;
}

/// The same for a gain whose input only comes at the last moment: all that can be done with the state alone stands apart
/// from it, the attack's division among that.
template <bool kIsHolding>
[[gnu::always_inline]] inline __m128d stepLate(const CPairs& c, int stage, __m128d in, __m128d s, __m128d opening)
{
    const __m128d attackRatio = in * (c.attackScale / (s + kGuard));
    const __m128d releaseRatio = s * c.releaseScale / in;
    const auto isAttack = s >= in;
    const __m128d ratio = isAttack ? attackRatio : releaseRatio;
    const __m128d rate = _mm_max_pd((isAttack ? c.attackOffset : c.releaseOffset) + ratio, c.minRate);
    __m128d release = c.release[stage];
    if constexpr (kIsHolding)
        release = opening >= s ? release : both(0.0);
    return s + (in - s) * (isAttack ? c.attack[stage] : release) * rate;
}

template <bool kIsInverse, bool kIsHolding>
[[gnu::always_inline]] inline __m128d stepFeedback(const CPairs& c, int stage, __m128d in, __m128d s, __m128d opening)
{
    if constexpr (kIsInverse)
        return stepLate<kIsHolding>(c, stage, in, s, opening);
    else
        return stepStage<false, kIsHolding>(c, stage, in, s, opening);
}

__m128d loadPair(const CFollowerLines& lines, std::size_t stage)
{
    return _mm_set_pd(lines.states[1]->stages[stage], lines.states[0]->stages[stage]);
}

[[gnu::always_inline]] inline void storePair(double* const (&out)[2], std::size_t i, __m128d value)
{
    _mm_storel_pd(out[0] + i, value);
    _mm_storeh_pd(out[1] + i, value);
}

void storeStates(const CFollowerLines& lines, __m128d s1, __m128d s2, __m128d s3, __m128d s4, __m128d y)
{
    *lines.states[1] = {{s1[1], s2[1], s3[1], s4[1]}, y[1]};
    *lines.states[0] = {{s1[0], s2[0], s3[0], s4[0]}, y[0]};
}

/// Each stage runs one sample behind the stage before it, so that the four steps of a turn wait for nothing but the turn
/// before; sample after sample, the processor would not look far enough ahead to overlap them. The sum of the stages
/// travels along with its sample.
template <bool kIsInverse, bool kIsHolding>
void follow(const CFollower& follower, const CFollowerLines& lines, std::size_t count)
{
    constexpr std::size_t kLag = CFollower::kStages - 1;
    if (count == 0)
        return;
    const CPairs c(follower);
    __m128d s1 = loadPair(lines, 0);
    __m128d s2 = loadPair(lines, 1);
    __m128d s3 = loadPair(lines, 2);
    __m128d s4 = loadPair(lines, 3);
    __m128d sum1 = both(0.0);
    __m128d sum2 = both(0.0);
    __m128d sum3 = both(0.0);
    __m128d y = both(0.0);
    const auto turn = [&]<bool kIsEdge>(std::size_t t) __attribute__((always_inline))
    {
        // At the edges of the block only the stages that have a sample of it.
        const auto has = [t, count](std::size_t lag) { return !kIsEdge || (t >= lag && t - lag < count); };
        if (has(3)) {
            s4 = stepStage<kIsInverse, false>(c, 3, s3, s4, s3);
            y = (sum3 + s4) * c.norm;
            storePair(lines.out, t - 3, y);
        }
        if (has(2)) {
            s3 = stepStage<kIsInverse, false>(c, 2, s2, s3, s2);
            sum3 = sum2 + s3 * c.weights[2];
        }
        if (has(1)) {
            s2 = stepStage<kIsInverse, false>(c, 1, s1, s2, s1);
            sum2 = sum1 + s2 * c.weights[1];
        }
        if (has(0)) {
            const __m128d x = _mm_set_pd(lines.in[1][t], lines.in[0][t]);
            __m128d opening = x;
            if constexpr (kIsHolding)
                opening = _mm_set_pd(lines.opening[1][t], lines.opening[0][t]);
            s1 = stepStage<kIsInverse, kIsHolding>(c, 0, x, s1, opening);
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
void followFeedback(const CFollower& follower, const CFollowerLines& lines, std::size_t count)
{
    const CPairs c(follower);
    __m128d s1 = loadPair(lines, 0);
    __m128d s2 = loadPair(lines, 1);
    __m128d s3 = loadPair(lines, 2);
    __m128d s4 = loadPair(lines, 3);
    __m128d y = _mm_set_pd(lines.states[1]->last, lines.states[0]->last);
    for (std::size_t i = 0; i < count; ++i) {
        const __m128d last = y;
        const __m128d divisor = kIsInverse ? last : last + kGuard;
        const __m128d x = _mm_set_pd(lines.in[1][i], lines.in[0][i]) / divisor;
        __m128d opening = x;
        if constexpr (kIsHolding)
            opening = _mm_set_pd(lines.opening[1][i], lines.opening[0][i]) / divisor;
        s1 = stepFeedback<kIsInverse, kIsHolding>(c, 0, x, s1, opening);
        s2 = stepFeedback<kIsInverse, false>(c, 1, s1, s2, s1);
        s3 = stepFeedback<kIsInverse, false>(c, 2, s2, s3, s2);
        s4 = stepFeedback<kIsInverse, false>(c, 3, s3, s4, s3);
        y = (s1 * c.weights[0] + s2 * c.weights[1] + s3 * c.weights[2] + s4) * c.norm;
        storePair(lines.out, i, last * y);
    }
    storeStates(lines, s1, s2, s3, s4, y);
}

} // namespace

CFollower makeFollower(const CFollowerSettings& settings, double sampleRate)
{
    const CModeTerms attack = modeTerms(settings.attackMode);
    const CModeTerms release = modeTerms(settings.releaseMode);
    const double scale = settings.isFeedback ? 1.0 : 0.5;
    CFollower follower{};
    for (int i = 0; i < CFollower::kStages; ++i) {
        const double time = kStageTimes[i] * scale;
        follower.attack[i] = attackCoefficient(time * attack.time * settings.attack, sampleRate);
        follower.release[i] = releaseCoefficient(time * release.time * settings.release, sampleRate);
    }
    follower.attackOffset = attack.offset;
    follower.attackScale = attack.scale;
    follower.releaseOffset = release.offset;
    follower.releaseScale = release.scale;
    follower.minRate = settings.minRate;
    setWeights(follower, settings.punch);
    return follower;
}

CFollowerState restOfFollower(const CFollowerSettings& settings)
{
    const double rest = settings.isInverse || settings.isFeedback ? 1.0 : 0.0;
    return {{rest, rest, rest, rest}, rest};
}

FFollowerKernel followerKernel(bool isInverse, bool isFeedback, bool isHolding)
{
    if (isHolding)
        return isFeedback ? followFeedback<true, true> : follow<true, true>;
    if (isInverse)
        return isFeedback ? followFeedback<true, false> : follow<true, false>;
    return isFeedback ? followFeedback<false, false> : follow<false, false>;
}

} // namespace qrb
