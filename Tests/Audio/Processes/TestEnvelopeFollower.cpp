// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CScopedFloatMode.h"
#include "Audio/Processes/EnvelopeFollower.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <random>
#include <tuple>
#include <vector>

namespace qrb {
namespace {

using CSignal = std::vector<double>;

constexpr double kPi = std::numbers::pi;

/// The follower in words: one branch a case, nothing prepared.
class CSlowFollower {
public:
    CSlowFollower(const CFollowerSettings& settings, double sampleRate, bool isHolding)
        : m_set(settings), m_sampleRate(sampleRate), m_isHolding(isHolding), m_isGain(settings.isInverse || isHolding),
          m_y(settings.isInverse || settings.isFeedback ? 1.0 : 0.0)
    {
        for (double& s : m_s)
            s = m_y;
    }

    double next(double x, double opening)
    {
        const double last = m_y;
        if (m_set.isFeedback) {
            const double divisor = m_isGain ? last : last + 1e-15;
            x /= divisor;
            opening /= divisor;
        }
        double in = x;
        for (int i = 0; i < 4; ++i) {
            double& s = m_s[i];
            const bool isFalling = in <= s;
            const bool isAttack = m_isGain ? isFalling : in >= s;
            const bool isHeld = m_isHolding && i == 0 && !isAttack && opening < s;
            const double top = std::max(in, s) + (isAttack ? 1e-15 : 0.0);
            const double ratio = std::min(in, s) / top;
            if (!isHeld)
                s += (in - s) * std::max(scaled(ratio, isAttack), m_set.minRate) * coefficient(i, isAttack);
            in = s;
        }
        double sum = m_s[3];
        double count = 1.0;
        for (int i = 0; i < 3; ++i) {
            sum += m_s[i] * weight(i);
            count += weight(i);
        }
        m_y = sum / count;
        return m_set.isFeedback ? last * m_y : m_y;
    }

private:
    [[nodiscard]] double scaled(double ratio, bool isAttack) const
    {
        const EFollowerMode mode = isAttack ? m_set.attackMode : m_set.releaseMode;
        return mode == EFollowerMode::fast ? 1.0 : mode == EFollowerMode::normal ? ratio : 1.0 - ratio;
    }

    [[nodiscard]] double coefficient(int stage, bool isAttack) const
    {
        const EFollowerMode mode = isAttack ? m_set.attackMode : m_set.releaseMode;
        const double time = (isAttack ? m_set.attack : m_set.release) * 0.5 * 0.25 * (1 << stage) *
                            (m_set.isFeedback ? 2.0 : 1.0) * (mode == EFollowerMode::slow ? 0.5 : 1.0);
        long double w = 2.0L * std::numbers::pi_v<long double> / (m_sampleRate * time);
        const bool isBeyond = w > kPi;
        if (isAttack && isBeyond)
            w = kPi;
        const long double x = 2.0L - std::cos(w); // close to 1: in short numbers the next line would lose its digits
        const auto c = static_cast<double>(1.0L - x + std::sqrt(x * x - 1.0L));
        return !isAttack && isBeyond ? std::max(c, 0.02) : c;
    }

    /// Stage i sounds fully between two steps of punch and fades in and out over one step around them.
    [[nodiscard]] double weight(int i) const
    {
        const double p = 6.0 * m_set.punch - 0.5;
        const double in = i == 0 ? 1.0 : std::clamp(p - (i - 1), 0.0, 1.0);
        const double out = std::clamp(p - (i + 2), 0.0, 1.0);
        return (0.5 - 0.5 * std::cos(in * kPi)) * (0.5 + 0.5 * std::cos(out * kPi));
    }

    CFollowerSettings m_set;
    double m_sampleRate;
    bool m_isHolding;
    bool m_isGain;
    double m_y;
    double m_s[4] = {};
};

/// Steps, silence and slopes: levels from 0 to 2, or gains from 0.01 to 1.
CSignal testSignal(unsigned seed, bool isGain, std::size_t count)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> uniform(0.0, 1.0);
    CSignal signal;
    while (signal.size() < count) {
        const double from = uniform(random) < 0.2 ? 0.0 : 2.0 * std::pow(uniform(random), 4.0);
        const double to = uniform(random) < 0.5 ? from : uniform(random);
        for (int i = 0; i < 70; ++i)
            signal.push_back(from + (to - from) * i / 70.0);
    }
    signal.resize(count);
    if (isGain)
        for (double& x : signal)
            x = 0.01 + std::min(x, 0.99);
    return signal;
}

CSignal runAlone(const CFollower& follower, EFollowerLoop loop, CFollowerState state, const CSignal& in,
                 const CSignal& opening)
{
    CSignal out(in.size());
    const CFollowerLine line{&follower, &state, in.data(), opening.data(), out.data()};
    runFollowers(loop, {&line, 1}, in.size());
    return out;
}

TEST(EnvelopeFollower, EqualsTheSlowModelInAllModesAndKernels)
{
    constexpr EFollowerMode kModes[] = {EFollowerMode::fast, EFollowerMode::normal, EFollowerMode::slow};
    constexpr double kPunch[] = {0.0, 1.0 / 12.0, 0.2, 0.37, 0.5, 0.75, 0.9, 11.0 / 12.0, 1.0};
    constexpr std::tuple<double, double, double> kTimes[] = {
        {0.00001, 0.0003628, 44100.0}, {0.00008, 0.00125, 192000.0}, {0.02, 0.15, 48000.0}, {0.0005, 0.001, 384000.0}};
    unsigned seed = 0;
    for (const EFollowerMode attackMode : kModes)
        for (const EFollowerMode releaseMode : kModes)
            for (const auto& [attack, release, sampleRate] : kTimes)
                for (const int kernel : {0, 1, 2, 3, 4, 5}) {
                    const bool isHolding = kernel > 3;
                    const bool isInverse = isHolding || kernel % 2 == 1;
                    const bool isFeedback = kernel == 2 || kernel == 3 || kernel == 5;
                    const CFollowerSettings settings{attack,
                                                     release,
                                                     attackMode,
                                                     releaseMode,
                                                     isInverse,
                                                     isFeedback,
                                                     seed % 5 == 0 ? 0.0 : 0.2,
                                                     kPunch[seed % std::size(kPunch)]};
                    const CSignal in = testSignal(++seed, isInverse, 2000);
                    const CSignal opening = testSignal(seed + 1000, isInverse, 2000);
                    const CSignal out = runAlone(makeFollower(settings, sampleRate), followerLoop(settings, isHolding),
                                                 restOfFollower(settings), in, opening);
                    CSlowFollower slow(settings, sampleRate, isHolding);
                    for (std::size_t i = 0; i < in.size(); ++i) {
                        const double want = slow.next(in[i], opening[i]);
                        ASSERT_NEAR(out[i], want, 1e-12 * want) << "seed " << seed << " sample " << i;
                    }
                }
}

TEST(EnvelopeFollower, AGateThatClosedOpensAtTheHigherThresholdOnlyAndIsNeverFrozen)
{
    for (const double release : {0.001, 0.0003628}) {
        const CFollowerSettings settings{0.001, release, EFollowerMode::normal, EFollowerMode::slow, true, false,
                                         0.2,   1.0};
        const CFollower follower = makeFollower(settings, 44100.0);
        const EFollowerLoop loop = followerLoop(settings, true);
        CFollowerState state = restOfFollower(settings);
        const auto settle = [&](double closing, double opening) {
            CSignal in(20000, closing);
            const CSignal z(in.size(), opening);
            const CFollowerLine line{&follower, &state, in.data(), z.data(), in.data()};
            runFollowers(loop, {&line, 1}, in.size());
            return in.back();
        };
        EXPECT_EQ(settle(1.0, 0.0), 1.0) << "open, the higher threshold does not matter";
        EXPECT_NEAR(settle(0.1, 0.0), 0.1, 1e-3) << "below the lower threshold";
        EXPECT_NEAR(settle(0.9, 0.05), 0.1, 1e-3) << "between the thresholds it holds";
        EXPECT_NEAR(settle(1.0, 1.0), 1.0, 1e-3) << "above the higher threshold, release " << release;
        EXPECT_NEAR(settle(0.6, 0.3), 0.6, 1e-3) << "falls again before it is held";
    }
}

TEST(EnvelopeFollower, StartsAtRestAndComesBackThereAfterALoudPassage)
{
    const CScopedFloatMode floatMode;
    for (const bool isFeedback : {false, true})
        for (const bool isInverse : {false, true})
            for (const EFollowerMode mode : {EFollowerMode::fast, EFollowerMode::normal, EFollowerMode::slow}) {
                const CFollowerSettings settings{0.001, 0.01, mode, mode, isInverse, isFeedback, 0.2, 0.4};
                const CFollower follower = makeFollower(settings, 44100.0);
                const EFollowerLoop loop = followerLoop(settings, false);
                // A level with feedback divides by what silence left of it: such gains rest at 1.
                const double rest = isInverse || isFeedback ? 1.0 : 0.0;
                const CSignal quiet(300000, rest);
                for (const double gain : runAlone(follower, loop, restOfFollower(settings), quiet, {}))
                    ASSERT_NEAR(gain, rest, 1e-12) << "no burst at the start";
                CFollowerState state = restOfFollower(settings);
                CSignal block = testSignal(9, true, 2000);
                for (double& x : block)
                    x = isFeedback && !isInverse ? 1.0 / x : x;
                block.insert(block.end(), quiet.begin(), quiet.end());
                const CFollowerLine line{&follower, &state, block.data(), nullptr, block.data()};
                runFollowers(loop, {&line, 1}, block.size());
                EXPECT_NEAR(block.back(), rest, 1e-9) << isFeedback << isInverse;
                for (const double s : state.stages)
                    EXPECT_NE(std::fpclassify(s), FP_SUBNORMAL);
            }
}

TEST(EnvelopeFollower, LinesSideBySideAtAnyWidthGiveTheBitsOfEachAlone)
{
    constexpr std::size_t kLines = 7;
    for (std::size_t loop = 0; loop < kFollowerLoops; ++loop) {
        CFollower followers[kLines];
        CFollowerState rests[kLines];
        CSignal in[kLines];
        CSignal opening[kLines];
        const auto ownLoop = [loop](std::size_t line) {
            return static_cast<EFollowerLoop>(loop == static_cast<std::size_t>(EFollowerLoop::mixed) ? line % 3 : loop);
        };
        for (unsigned i = 0; i < kLines; ++i) {
            const EFollowerLoop own = ownLoop(i);
            const CFollowerSettings settings{0.001 * (i + 1),
                                             0.03,
                                             EFollowerMode::slow,
                                             EFollowerMode::normal,
                                             own != EFollowerLoop::level && own != EFollowerLoop::levelFeedback,
                                             own >= EFollowerLoop::levelFeedback,
                                             0.2,
                                             0.1 * i};
            followers[i] = makeFollower(settings, 44100.0);
            rests[i] = restOfFollower(settings);
            in[i] = testSignal(i, true, 500);
            opening[i] = testSignal(i + 50, true, 500);
        }
        for (const EVectorWidth width : {EVectorWidth::pairs, EVectorWidth::quads}) {
            if (!hasVectorWidth(width))
                continue;
            CFollowerState states[kLines];
            std::copy(std::begin(rests), std::end(rests), states);
            CSignal out[kLines];
            for (CSignal& samples : out)
                samples.resize(500);
            using CCut = std::array<std::size_t, 3>; // start, length, lines in the first of two runs
            for (const auto& [start, count, split] :
                 {CCut{0, 1, 7}, CCut{1, 0, 2}, CCut{1, 332, 5}, CCut{333, 167, 3}}) {
                CFollowerLine lines[kLines];
                for (std::size_t i = 0; i < kLines; ++i) {
                    const bool isOpen =
                        static_cast<std::size_t>(ownLoop(i)) != loop && ownLoop(i) < EFollowerLoop::holdingGain;
                    lines[i] = {&followers[i],  &states[i],
                                &in[i][start],  isOpen ? nullptr : &opening[i][start],
                                &out[i][start], ownLoop(i) != EFollowerLoop::level};
                }
                runFollowers(static_cast<EFollowerLoop>(loop), {lines, split}, count, width);
                runFollowers(static_cast<EFollowerLoop>(loop), {lines + split, kLines - split}, count, width);
            }
            for (std::size_t i = 0; i < kLines; ++i)
                EXPECT_EQ(out[i], runAlone(followers[i], ownLoop(i), rests[i], in[i], opening[i]))
                    << "loop " << loop << " line " << i;
        }
    }
}

} // namespace
} // namespace qrb
