// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Viz/CAudioVizDataSpectrum.h"
#include "Tests/Audio/CGraphRig.h"
#include "Tests/Audio/Processes/ModuleXml.h"
#include "Tests/Audio/Viz/CVizProbe.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <limits>
#include <random>

namespace qrb {
namespace {

constexpr double kRate = 44100.0;
const double kPi = std::acos(-1.0);
const char* const kSource = "plugin.modMain.modSpectrum";
const char* const kSecond = "plugin.modMain.modSpectrum-sec";

std::string spectrumXml()
{
    return paramXml("size", "0") + paramXml("overlap", "0.5") + paramXml("avg", "0.01") + paramXml("type", "0") +
           paramXml("reset", "0") + paramXml("sectype", "3") + paramXml("sec", "0") +
           moduleXml("modSpectrum", {"size", "overlap", "avg", "type", "reset", "sectype", "sec"});
}

/// Runs until records are ready for a block size, then starts the spectrum anew.
void warmUp(CGraphRig& rig, CVizProbe& probe)
{
    (void)rig.run(1);
    (void)probe.pull();
    rig.reset();
}

double noise(int sample)
{
    std::minstd_rand random(static_cast<unsigned>(sample) + 1);
    random.discard(3);
    return std::uniform_real_distribution<double>(-1.0, 1.0)(random);
}

/// Magnitudes of the windowed frame that ends before `end`; the signal begins at `begin`.
std::vector<double> slowFrame(int begin, int end, int size)
{
    std::vector<double> bins;
    for (int k = 0; k <= size / 2; ++k) {
        std::complex<double> sum;
        for (int n = 0; n < size; ++n) {
            const int at = end - size + n;
            const double window = std::sqrt(8.0) / size * 0.5 * (1.0 - std::cos(2.0 * kPi * n / size));
            sum += (at < begin ? 0.0 : noise(at)) * window * std::polar(1.0, -2.0 * kPi * k * n / size);
        }
        bins.push_back(std::abs(sum));
    }
    return bins;
}

struct CSlowSpectrum {
    int kind;
    std::vector<double> bins, means;
    int frames = 0;

    void add(const std::vector<double>& frame, double k1, double k2)
    {
        bins.resize(frame.size());
        means.resize(frame.size());
        ++frames;
        for (std::size_t i = 0; i < frame.size(); ++i) {
            double& s = bins[i];
            const double m = frame[i];
            means[i] += (m - means[i]) * k1;
            const double d = means[i] - m;
            s = kind == 0   ? s + (m - s) * k1
                : kind == 1 ? std::max(s, m)
                : kind == 2 ? s + m
                : kind == 3 ? (m > s ? m : s + (m - s) * k1)
                            : std::sqrt(std::abs(s * s + (d * d - s * s) * k2));
        }
    }
    [[nodiscard]] double at(std::size_t i) const { return kind == 2 ? bins[i] / frames : bins[i]; }
};

TEST(CModSpectrum, ASineOnABinReads0707InAllSizesKindsAndOverlaps)
{
    constexpr double kOverlaps[] = {0.5, 0.75, 0.875, 0.9375};
    CGraphRig rig(spectrumXml());
    CVizProbe probe(rig.viz());
    (void)probe.listen(kSource);
    (void)probe.listen(kSecond);
    rig.set("avg", 1e-9); // all smoothers follow at once
    rig.set("sec", 1);
    int begin = 0;
    for (int i = 0; i < 11 * 5; ++i) {
        const int size = 64 << i / 5;
        const int kind = i % 5;
        const int bin = size / 8 + 1;
        const double overlap = kOverlaps[(i / 5 + kind) % 4];
        rig.set("size", i / 5);
        rig.set("overlap", overlap);
        rig.set("type", kind);
        rig.set("sectype", 4 - kind);
        warmUp(rig, probe);
        rig.input = [&](int, int n) {
            return std::sin(2.0 * kPi * static_cast<double>(static_cast<std::int64_t>(n) * bin % size) / size);
        };
        ++begin;
        const int count = 3 * size + 5000;
        (void)rig.run(count, 512);
        auto records = probe.pull();
        for (const auto& [name, isKind] : {std::pair(kSource, kind), std::pair(kSecond, 4 - kind)}) {
            SCOPED_TRACE(std::string(name) + " " + std::to_string(size) + " " + std::to_string(isKind));
            ASSERT_EQ(records[name].size(), 2u);
            const auto& before = dynamic_cast<CAudioVizDataSpectrum&>(*records[name][0]);
            const auto& last = dynamic_cast<CAudioVizDataSpectrum&>(*records[name][1]);
            ASSERT_EQ(last.bins.size(), static_cast<std::size_t>(size / 2 + 1));
            EXPECT_EQ(last.blockSize, size);
            EXPECT_EQ(last.sampleRate, kRate);
            EXPECT_EQ(last.spectrumKind, isKind);
            const auto frames = [&](const CAudioVizDataSpectrum& record) {
                return (record.time * kRate + 0.5 * size - begin) / std::round(size * (1.0 - overlap));
            };
            EXPECT_NEAR(frames(last), std::round(frames(last)), 1e-6);
            EXPECT_GT(frames(last), frames(before) + 0.5);
            const auto level = [&](int at) {
                const auto place = static_cast<std::size_t>(at);
                return isKind != 2 ? last.bins[place] // a mean: of the frames between the two, which are all steady
                                   : (last.bins[place] * frames(last) - before.bins[place] * frames(before)) /
                                         (frames(last) - frames(before));
            };
            const double steady = isKind == 4 ? 0.0 : std::sqrt(0.5);
            EXPECT_NEAR(level(bin), steady, 1e-9);
            if (isKind != 1) { // its first frames begin with a step, which is all over the spectrum
                EXPECT_NEAR(level(bin - 1), 0.5 * steady, 1e-9);
                EXPECT_NEAR(level(bin + 1), 0.5 * steady, 1e-9);
                EXPECT_NEAR(level(0), 0.0, 1e-9);
                EXPECT_NEAR(level(size / 2), 0.0, 1e-9);
            }
        }
        begin += count;
    }
}

TEST(CModSpectrum, BadSamplesAreForgottenWithTheirFrames)
{
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double bad : {std::numeric_limits<double>::quiet_NaN(), infinity, -1e200, 1e308}) {
        for (int kind = 0; kind < 5; kind += kind == 0 ? 3 : 1) { // the others hold for ever what is loud
            CGraphRig rig(spectrumXml());
            CVizProbe probe(rig.viz());
            (void)probe.listen(kSource);
            rig.set("type", kind);
            rig.set("avg", 1e-9);
            rig.input = [&](int, int n) { return n == 3000 || n == 3001 ? bad : n % 2 == 0 ? 1.0 : -1.0; };
            warmUp(rig, probe);
            (void)rig.run(8000, 100);
            EXPECT_NEAR(probe.pull<CAudioVizDataSpectrum>(kSource).back().bins[32], kind == 4 ? 0.0 : std::sqrt(2.0),
                        1e-9)
                << bad << " " << kind;
        }
    }
}

TEST(CModSpectrum, FollowsTheSlowModelInAllKindsAndOverlaps)
{
    constexpr int kSize = 64;
    for (int kind = 0; kind < 5; ++kind) {
        for (const double overlap : {0.5, 0.67, 0.9375}) { // the second moves on by an odd number of samples
            CGraphRig rig(spectrumXml());
            CVizProbe probe(rig.viz());
            (void)probe.listen(kSource);
            (void)probe.listen(kSecond);
            rig.input = [](int, int n) { return noise(n); };
            rig.set("overlap", overlap);
            rig.set("type", kind);
            rig.set("sectype", 4 - kind);
            rig.set("sec", 1);
            warmUp(rig, probe);
            const int begin = 1;
            const int hop = static_cast<int>(std::lround(kSize * (1.0 - overlap)));
            const double rate = kRate / hop * 0.01;
            const double k1 = 1.0 - std::pow(0.1, 1.0 / rate);
            const double k2 = 1.0 - std::pow(0.1, 2.0 / rate);
            CSlowSpectrum first{kind, {}, {}};
            CSlowSpectrum second{4 - kind, {}, {}};
            double lastPost = -1.0;
            int posts = 0;
            for (int n = begin; n < begin + 4000; n += hop) {
                (void)rig.run(hop, 7);
                const int end = n + hop;
                const std::vector<double> frame = slowFrame(begin, end, kSize);
                first.add(frame, k1, k2);
                second.add(frame, k1, k2);
                auto records = probe.pull();
                if (end / kRate - lastPost < 1.0 / 30.0 / 1.3) {
                    EXPECT_TRUE(records.empty());
                    continue;
                }
                ++posts;
                lastPost = end / kRate;
                for (const auto& [name, model] : {std::pair(kSource, first), std::pair(kSecond, second)}) {
                    ASSERT_EQ(records[name].size(), 1u) << name << kind << " " << n;
                    const auto& record = dynamic_cast<CAudioVizDataSpectrum&>(*records[name][0]);
                    EXPECT_NEAR(record.time, (end - 0.5 * kSize) / kRate, 1e-12);
                    EXPECT_EQ(record.spectrumKind, model.kind);
                    const bool isSinceReset = model.kind == 1 || model.kind == 2;
                    EXPECT_NEAR(record.average, isSinceReset ? (end - begin) / kRate : 0.01, 1e-12);
                    for (std::size_t i = 0; i < frame.size(); ++i)
                        ASSERT_NEAR(record.bins[i], model.at(i), 1e-12) << name << kind << " " << n << " " << i;
                }
            }
            EXPECT_GE(posts, 3);
        }
    }
}

TEST(CModSpectrum, AResetStartsAnewAndOtherSizesGetOtherRecords)
{
    CGraphRig rig(spectrumXml());
    CVizProbe probe(rig.viz());
    (void)probe.listen(kSource);
    rig.set("type", 1);
    rig.input = [](int, int n) { return n < 3000 ? 1.0 : 0.0; };
    warmUp(rig, probe);
    (void)rig.run(5000);
    EXPECT_GT(probe.pull<CAudioVizDataSpectrum>(kSource).back().bins[0], 0.1);
    rig.set("reset", 1);
    (void)rig.run(5000);
    EXPECT_EQ(probe.pull<CAudioVizDataSpectrum>(kSource).back().bins[0], 0.0);
    rig.set("size", 3);
    (void)rig.run(5000); // finds the records too small
    for (const CAudioVizDataSpectrum& record : probe.pull<CAudioVizDataSpectrum>(kSource))
        EXPECT_EQ(record.bins.size(), 33u);
    (void)rig.run(5000);
    EXPECT_EQ(probe.pull<CAudioVizDataSpectrum>(kSource).back().bins.size(), 257u);
    rig.set("overlap", 0.9375);
    (void)rig.run(100);
    rig.set("overlap", 0.5);
    rig.set("type", 0);
    (void)rig.run(255);
    (void)probe.pull();
    (void)rig.run(1);
    EXPECT_EQ(probe.pull<CAudioVizDataSpectrum>(kSource).size(), 1u) << "the first frame comes after a whole hop";
    rig.allocations = 0;
    for (int i = 0; i < 200; ++i)
        rig.feedOnly(64);
    EXPECT_EQ(rig.allocations, 0u);
}

} // namespace
} // namespace qrb
