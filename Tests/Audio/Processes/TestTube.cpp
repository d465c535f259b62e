// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CScopedFloatMode.h"
#include "Audio/Processes/Tube.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

namespace qrb {
namespace {

using CSignal = std::vector<double>;

struct CVoice {
    const char* name;
    double v[21];
};

/// Two curves (limit, bias, knee; the second with its gain), blocker, low-pass, morph, balance, output gain.
constexpr CVoice kVoices[] = {
    {"Plain", {10,       0, 10,      10,      0, 31.6228, 8.28751, 4.4822,   0,        0, 21000,
               0.005596, 0, 810.889, 4.41437, 1, 10.5533, 0,       -0.36737, 0.170564, 1}},
    {"Soft", {4.2636,   -1.43449, 3.98107, 10,       -0.157444, 55.0107, 1.72253,  4.4822,    0,         0, 21000,
              0.056885, 0.067121, 64.9055, 0.058271, 1,         4.2636,  0.402311, -0.131203, -0.059042, 1}},
    {"Medium", {4.30675,  0.265446, 1000,    4.81125, 2, 3.05189, 4.66807, 4.29042, 0,         0,       21000,
                0.072436, -0.90093, 1536.15, 1.84023, 0, 3.05811, 0.36951, 0.01312, -0.082002, 0.455902}},
    {"Hard", {5.88474,  0.078722, 6.65343, 3.52112, 0.13995, 5.84327,  1.77536, 1.53533,   1,        0, 21000,
              0.079308, 0.586042, 132.674, 2,       1,       0.739259, 0,       -0.262407, 0.078722, 1}},
    {"Poppy", {6.84429,  0.498573, 111.886, 4.51333, 0.708499, 113.589, 1.06228, 1.86924,   1,         1,       15128.1,
               0.657267, 0.201179, 3092.67, 3.56228, 1,        4.13672, 0,       -0.098403, -0.052481, 0.635616}},
    {"Crisp", {3.48584,  0.90093,  2.89892, 5.11092,  0.586042, 559.536, 2.12818,  5.2235,    0,        0,      21000,
               0.973434, 0.384863, 222.54,  0.077692, 1,        2.79313, 0.085282, -0.223046, 0.068882, 1.48103}},
};

CTubeSettings settingsOf(const CVoice& voice, double driveDecibels = 0.0)
{
    const auto& v = voice.v;
    CTubeSettings settings;
    settings.curves[0] = {v[0], v[1], v[2], 1.0};
    settings.curves[1] = {v[3], v[4], v[5], v[6]};
    settings.blockerFrequency = v[7];
    settings.isBlockedByFeedback = v[8] != 0.0;
    settings.hasLowPass = v[9] != 0.0;
    settings.lowPassFrequency = v[10];
    settings.morphGain = v[11];
    settings.morphBias = v[12];
    settings.morphFrequency = v[13];
    settings.morphBandwidth = v[14];
    settings.hasBalance = v[15] != 0.0;
    settings.balance = v[16];
    settings.correctionBelow = v[17];
    settings.correctionAbove = v[18];
    settings.correctionHigh = v[19];
    settings.outputGain = v[20];
    settings.drive = std::pow(10.0, driveDecibels / 20.0);
    return settings;
}

/// The saturator step by step in extended precision, with the exponential's series as it stands in the books.
class CSlowTube {
    using Real = long double;

public:
    CSlowTube(const CTubeSettings& set, double sampleRate) : m_set(set)
    {
        const Real turn = 2.0L * std::numbers::pi_v<Real> / sampleRate;
        for (int i = 0; i < 2; ++i) {
            CCurve& curve = m_curves[i];
            curve.c = (Real(set.curves[i].bias) + set.bias) * set.curves[i].limit;
            curve.g = Real(set.drive) * set.curves[i].gain;
            curve.k = set.curves[i].limit / std::max(1.0001L, Real(set.curves[i].knee));
            curve.r = set.curves[i].limit - curve.k;
            Real energy = 0;
            for (const Real d : {-0.6L, -0.3L, -0.15L, -0.075L, 0.6L, 0.3L, 0.15L, 0.075L})
                energy += std::pow(shape(curve.c + d * curve.g, curve) - shape(curve.c, curve), 2.0L);
            curve.n = std::sqrt(0.95625L / energy);
        }
        if (set.hasBalance) {
            m_curves[0].n = m_curves[1].n * std::sqrt(Real(set.balance));
            m_curves[1].n /= std::sqrt(Real(set.balance));
        }
        const Real drive = 20.0L * std::log10(m_curves[0].g);
        const Real change = drive * (drive < 0 ? set.correctionBelow : set.correctionAbove) +
                            std::max(drive - 30.0L, 0.0L) * set.correctionHigh;
        for (CCurve& curve : m_curves)
            curve.n *= std::pow(10.0L, change / 20.0L) * set.outputGain;
        const Real x = 2.0L - std::cos(turn * set.blockerFrequency);
        m_hc = 1.0L - x + std::sqrt(x * x - 1.0L);
        const Real w = turn * set.morphFrequency;
        const Real alpha = std::sin(w) * std::sinh(std::log(2.0L) / 2 * set.morphBandwidth * w / std::sin(w));
        m_b = (1.0L - std::cos(w)) / 2 / (1.0L + alpha);
        m_a1 = 2.0L * std::cos(w) / (1.0L + alpha);
        m_a2 = (alpha - 1.0L) / (1.0L + alpha);
        if (set.hasLowPass)
            m_a = lowPass(turn * set.lowPassFrequency);
        const CCurve rest = blend(0.5L + 0.5L * morph(set.morphBias));
        m_s1 = set.isBlockedByFeedback ? rest.c / rest.g : shape(rest.c, rest);
    }

    double next(double x)
    {
        const Real w = m_last + m_a1 * m_z1 + m_a2 * m_z2;
        const Real y = m_b * (w + 2 * m_z1 + m_z2);
        m_z2 = m_z1;
        m_z1 = w;
        m_morph = 0.5L + 0.5L * morph(m_set.morphGain * y + m_set.morphBias);
        m_l += (x - m_l) * m_a;
        const CCurve curve = blend(m_morph);
        if (m_set.isBlockedByFeedback) {
            const Real u = shape((m_l - m_s1) * curve.g + curve.c, curve);
            m_s1 += m_hc * u;
            m_last = u * curve.n;
        } else {
            const Real u = shape(m_l * curve.g + curve.c, curve);
            m_s1 += (u - m_s1) * m_hc;
            const Real e = (u - m_s1) * curve.n;
            m_s2 += (e - m_s2) * m_hc;
            m_last = e - m_s2;
        }
        return static_cast<double>(m_last);
    }

    [[nodiscard]] double morph() const { return static_cast<double>(m_morph); }

private:
    struct CCurve {
        Real c, g, k, r, n;
    };

    static Real bend(Real t) { return 1.0L - 24.0L / ((((t + 3) * t + 6) * t + 12) * t + 24); }
    static Real morph(Real v) { return v < 0 ? -bend(-2 * v) : bend(2 * v); }
    static Real shape(Real u, const CCurve& c)
    {
        if (u > c.k)
            return bend(2 * (u - c.k) / c.r) * c.r + c.k;
        return u < -c.k ? -(bend(-2 * (u + c.k) / c.r) * c.r + c.k) : u;
    }

    [[nodiscard]] CCurve blend(Real m) const
    {
        const auto [a, b] = m_curves;
        return {a.c + m * (b.c - a.c), a.g + m * (b.g - a.g), a.k + m * (b.k - a.k), a.r + m * (b.r - a.r),
                a.n + m * (b.n - a.n)};
    }

    static Real lowPass(Real w)
    {
        Real low = 0, high = 1;
        for (;;) {
            const Real a = (low + high) / 2;
            const Real d = std::hypot(std::cos(w) * a + 1 - std::cos(w), (a - 1) * std::sin(w)) * std::exp(-0.05L) / a;
            if (d >= 0.999L && d <= 1.001L)
                return a;
            (d < 1 ? high : low) = a;
        }
    }

    CTubeSettings m_set;
    CCurve m_curves[2] = {};
    Real m_hc, m_b, m_a1, m_a2, m_a = 1;
    Real m_s1 = 0, m_s2 = 0, m_l = 0, m_z1 = 0, m_z2 = 0, m_last = 0, m_morph = 0;
};

CSignal testSignal(unsigned seed, std::size_t count)
{
    std::mt19937 random(seed);
    std::normal_distribution<double> noise(0.0, 0.05);
    CSignal signal(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double t = static_cast<double>(i);
        const double envelope = std::exp(-std::fmod(t, 900.0) / 300.0);
        signal[i] = envelope * (0.8 * std::sin(t * (0.01 + 1e-6 * t)) + noise(random));
    }
    return signal;
}

CSignal runAlone(const CTubeSettings& settings, double sampleRate, const CSignal& in, bool isMonitor = false)
{
    const CTube tube = makeTube(settings, sampleRate);
    CTubeState state = restOfTube(tube, settings.isBlockedByFeedback);
    CSignal out(in.size());
    const CTubeLine line{&tube, &state, in.data(), out.data()};
    runTubes(tubeLoop(settings.isBlockedByFeedback, isMonitor), {&line, 1}, in.size());
    return out;
}

TEST(Tube, EqualsTheSlowModelForAllVoicesAndDrives)
{
    const CSignal in = testSignal(1, 6000);
    for (const CVoice& voice : kVoices)
        for (const double drive : {-12.0, -3.0, 0.0, 12.0, 31.0, 54.0})
            for (const double sampleRate : {44100.0, 192000.0}) {
                const CTubeSettings settings = settingsOf(voice, drive);
                CSlowTube slow(settings, sampleRate);
                const CSignal out = runAlone(settings, sampleRate, in);
                const CSignal morph = runAlone(settings, sampleRate, in, true);
                for (std::size_t i = 0; i < in.size(); ++i) {
                    ASSERT_NEAR(out[i], slow.next(in[i]), 1e-10) << voice.name << " " << drive << " dB, sample " << i;
                    ASSERT_NEAR(morph[i], slow.morph(), 1e-10) << voice.name << " " << drive << " dB, sample " << i;
                }
            }
}

TEST(Tube, SilenceStaysSilentFromTheFirstSampleOnAndComesBackAfterALoudPassage)
{
    const CScopedFloatMode floatMode;
    const CSignal silence(44100, 0.0);
    for (const CVoice& voice : kVoices)
        for (const double drive : {-12.0, 0.0, 54.0}) {
            CTubeSettings settings = settingsOf(voice, drive);
            const bool isFeedback = settings.isBlockedByFeedback;
            for (const double bias : {0.4, 0.0}) {
                settings.bias = bias;
                for (const double sample : runAlone(settings, 44100.0, silence))
                    ASSERT_LE(std::abs(sample), isFeedback ? 1e-13 : 0.0) << voice.name << drive;
            }
            const CTube tube = makeTube(settings, 44100.0);
            const CTubeState rest = restOfTube(tube, isFeedback);
            CTubeState state = rest;
            CSignal block = testSignal(4, 44100);
            for (int second = 0; second < 16; ++second) {
                const CTubeLine line{&tube, &state, block.data(), block.data()};
                runTubes(tubeLoop(isFeedback, false), {&line, 1}, block.size());
                if (second < 15)
                    block = silence;
            }
            for (const double sample : block)
                ASSERT_LE(std::abs(sample), 1e-10) << voice.name << drive;
            EXPECT_NEAR(state.blocker1, rest.blocker1, 1e-10) << voice.name << drive;
            for (const double kept : {state.blocker2, state.lowPass, state.filter1, state.filter2, state.last})
                EXPECT_NE(std::fpclassify(kept), FP_SUBNORMAL) << voice.name << drive;
        }
}

TEST(Tube, LinesSideBySideAtAnyWidthGiveTheBitsOfEachAlone)
{
    constexpr std::size_t kLines = 7;
    CTube tubes[kLines];
    CTubeState rests[kLines];
    CSignal in[kLines];
    for (unsigned i = 0; i < kLines; ++i) {
        const CTubeSettings settings = settingsOf(kVoices[i % 6], 6.0 * i);
        tubes[i] = makeTube(settings, 44100.0);
        rests[i] = restOfTube(tubes[i], false);
        in[i] = testSignal(i, 500);
    }
    for (const ETubeLoop loop : {ETubeLoop::blocked, ETubeLoop::feedback, ETubeLoop::feedbackMonitor})
        for (const EVectorWidth width : {EVectorWidth::pairs, EVectorWidth::quads}) {
            if (!hasVectorWidth(width))
                continue;
            CTubeState states[kLines];
            std::copy(std::begin(rests), std::end(rests), states);
            CSignal out[kLines];
            for (CSignal& samples : out)
                samples.resize(500);
            using CCut = std::array<std::size_t, 3>; // start, length, lines in the first of two runs
            for (const auto& [start, count, split] : {CCut{0, 1, 7}, CCut{1, 332, 5}, CCut{333, 167, 3}}) {
                CTubeLine lines[kLines];
                for (std::size_t i = 0; i < kLines; ++i)
                    lines[i] = {&tubes[i], &states[i], &in[i][start], &out[i][start]};
                runTubes(loop, {lines, split}, count, width);
                runTubes(loop, {lines + split, kLines - split}, count, width);
            }
            for (std::size_t i = 0; i < kLines; ++i) {
                CTubeState state = rests[i];
                CSignal want(500);
                const CTubeLine line{&tubes[i], &state, in[i].data(), want.data()};
                runTubes(loop, {&line, 1}, want.size());
                EXPECT_EQ(out[i], want) << "line " << i;
            }
        }
}

TEST(Tube, AnyVoiceOfTheDeclaredRangesGivesFiniteSound)
{
    const CSignal in = testSignal(5, 50);
    for (const double limit : {0.1, 10.0})
        for (const double bias : {-2.0, 0.5, 2.0})
            for (const double knee : {1.0, 1000.0})
                for (const double gain : {0.001, 1000.0})
                    for (const double drive : {-60.0, 0.0, 54.0})
                        for (const double sampleRate : {32000.0, 44100.0, 1536000.0}) {
                            CTubeSettings settings = settingsOf(kVoices[drive > 0.0 ? 3 : 5], drive);
                            settings.curves[0] = {limit, bias, knee, 1.0};
                            settings.curves[1] = {1.0 / limit, -bias, knee, gain};
                            settings.bias = bias / 2.0;
                            settings.morphGain = gain;
                            settings.morphFrequency = 16000.0;
                            settings.morphBandwidth = 7.0;
                            for (const double sample : runAlone(settings, sampleRate, in))
                                ASSERT_TRUE(std::isfinite(sample)) << limit << " " << bias << " " << knee << " " << gain
                                                                   << " " << drive << " " << sampleRate;
                        }
}

} // namespace
} // namespace qrb
