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

namespace pairs {

#include "Audio/Processes/LanePairs.inl"

#include "Audio/Processes/FollowerLoops.inl"

} // namespace pairs

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

EFollowerLoop followerLoop(const CFollowerSettings& settings, bool isHolding)
{
    if (settings.isFeedback)
        return isHolding            ? EFollowerLoop::holdingGainFeedback
               : settings.isInverse ? EFollowerLoop::gainFeedback
                                    : EFollowerLoop::levelFeedback;
    return isHolding ? EFollowerLoop::holdingGain : settings.isInverse ? EFollowerLoop::gain : EFollowerLoop::level;
}

void runFollowers(EFollowerLoop loop, std::span<const CFollowerLine> lines, std::size_t count, EVectorWidth width)
{
    const auto place = static_cast<std::size_t>(loop);
    runInPlaces<CFollowerLine, FFollowerKernel>(lines, width, pairs::kKernels, wideFollowerKernels, place, count);
}

void runFollowers(EFollowerLoop loop, std::span<const CFollowerLine> lines, std::size_t count)
{
    runFollowers(loop, lines, count, widestVectors());
}

} // namespace qrb
