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

template <bool kIsInverse, bool kIsFeedback, bool kIsHolding>
void follow(const CFollower& follower, const CFollowerLines& lines, std::size_t count)
{
    const CPairs c(follower);
    CFollowerState& first = *lines.states[0];
    CFollowerState& second = *lines.states[1];
    __m128d s1 = _mm_set_pd(second.stages[0], first.stages[0]);
    __m128d s2 = _mm_set_pd(second.stages[1], first.stages[1]);
    __m128d s3 = _mm_set_pd(second.stages[2], first.stages[2]);
    __m128d s4 = _mm_set_pd(second.stages[3], first.stages[3]);
    __m128d y = _mm_set_pd(second.last, first.last);
    for (std::size_t i = 0; i < count; ++i) {
        __m128d x = _mm_set_pd(lines.in[1][i], lines.in[0][i]);
        __m128d z = kIsHolding ? _mm_set_pd(lines.opening[1][i], lines.opening[0][i]) : both(0.0);
        const __m128d last = y;
        if constexpr (kIsFeedback) {
            const __m128d divisor = kIsInverse ? last : last + kGuard;
            x = x / divisor;
            if constexpr (kIsHolding)
                z = z / divisor;
        }
        s1 = stepStage<kIsInverse, kIsHolding>(c, 0, x, s1, z);
        s2 = stepStage<kIsInverse, false>(c, 1, s1, s2, z);
        s3 = stepStage<kIsInverse, false>(c, 2, s2, s3, z);
        s4 = stepStage<kIsInverse, false>(c, 3, s3, s4, z);
        y = (s1 * c.weights[0] + s2 * c.weights[1] + s3 * c.weights[2] + s4) * c.norm;
        const __m128d out = kIsFeedback ? last * y : y;
        _mm_storel_pd(lines.out[0] + i, out);
        _mm_storeh_pd(lines.out[1] + i, out);
    }
    second = {{s1[1], s2[1], s3[1], s4[1]}, y[1]};
    first = {{s1[0], s2[0], s3[0], s4[0]}, y[0]};
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
        return isFeedback ? follow<true, true, true> : follow<true, false, true>;
    if (isInverse)
        return isFeedback ? follow<true, true, false> : follow<true, false, false>;
    return isFeedback ? follow<false, true, false> : follow<false, false, false>;
}

} // namespace qrb
