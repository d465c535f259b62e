// SPDX-License-Identifier: GPL-3.0-or-later
// Gain computer, envelope follower, saturator and clipper, each beside what no such loop can beat or the system's own
// mathematics, in the same run. Times are for a block of 512 samples of one line, or of two where the name says so.
#include "Audio/Processes/ClipLine.h"
#include "Audio/Processes/EnvelopeFollower.h"
#include "Audio/Processes/GainComputer.h"
#include "Audio/Processes/Tube.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include <dlfcn.h>
#include <immintrin.h>

namespace {

constexpr std::size_t kBlockLength = 512;
constexpr double kThreshold = -18.0;

using CBlock = std::vector<double>;

/// Strokes that decay, as a drum's level does.
CBlock makeLevels()
{
    CBlock levels(kBlockLength);
    for (std::size_t i = 0; i < kBlockLength; ++i)
        levels[i] = 0.9 * std::exp(-static_cast<double>(i % 128) / 25.0) + 1e-5;
    return levels;
}

CBlock makeAudio()
{
    CBlock audio = makeLevels();
    for (std::size_t i = 0; i < kBlockLength; ++i)
        audio[i] *= std::sin(0.07 * static_cast<double>(i));
    return audio;
}

template <class Work>
void run(benchmark::State& state, const CBlock& in, Work work)
{
    CBlock out(kBlockLength);
    for (auto _ : state) {
        work(in.data(), out.data());
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kBlockLength));
}

void copyOnly(benchmark::State& state)
{
    run(state, makeAudio(), [](const double* in, double* out) { std::copy(in, in + kBlockLength, out); });
}

void clip(benchmark::State& state)
{
    run(state, makeAudio(), [](const double* in, double* out) {
        qrb::clipLine({in, kBlockLength}, 0.5, {out, kBlockLength});
    });
}

/// The same curve with the C library's logarithm and exponential.
void gainLibm(benchmark::State& state)
{
    const qrb::CGainCurve curve = qrb::makeGainCurve(0.25, 6.0);
    run(state, makeLevels(), [&curve](const double* in, double* out) {
        for (std::size_t i = 0; i < kBlockLength; ++i) {
            const double over = std::log(in[i]) * qrb::kDecibelsPerNeper - kThreshold;
            out[i] = std::exp(qrb::gainDecibels(curve, over) * qrb::kNepersPerDecibel);
        }
    });
}

using FVector4 = __m256d (*)(__m256d);

/// A function of the C library's own vector mathematics, which picks fused multiply-add where there is any; null where
/// the system has none.
FVector4 libmvec(const char* name)
{
    void* const library = dlopen("libmvec.so.1", RTLD_NOW);
    return library == nullptr ? nullptr : reinterpret_cast<FVector4>(dlsym(library, name));
}

[[gnu::target("avx2,fma")]] void gainLibmvecLoop(const qrb::CGainCurve& curve, FVector4 log4, FVector4 exp4,
                                                 const double* in, double* out)
{
    for (std::size_t i = 0; i < kBlockLength; i += 4) {
        const __m256d over = log4(_mm256_loadu_pd(in + i)) * qrb::kDecibelsPerNeper - kThreshold;
        const __m256d along = over - curve.kneeStart;
        const __m256d arc = curve.arcCentre + _mm256_sqrt_pd(curve.arcRadius2 - along * along);
        const __m256d bent = over < _mm256_set1_pd(curve.kneeEnd) ? arc : over * curve.slope;
        const __m256d change = over > _mm256_set1_pd(curve.kneeStart) ? bent : _mm256_setzero_pd();
        _mm256_storeu_pd(out + i, exp4(change * qrb::kNepersPerDecibel));
    }
}

void gainLibmvec(benchmark::State& state)
{
    const FVector4 log4 = libmvec("_ZGVdN4v_log");
    const FVector4 exp4 = libmvec("_ZGVdN4v_exp");
    if (log4 == nullptr || exp4 == nullptr || !__builtin_cpu_supports("avx2")) {
        state.SkipWithError("no vector mathematics on this system");
        return;
    }
    const qrb::CGainCurve curve = qrb::makeGainCurve(0.25, 6.0);
    run(state, makeLevels(), [&](const double* in, double* out) { gainLibmvecLoop(curve, log4, exp4, in, out); });
}

void gain(benchmark::State& state)
{
    const auto width = static_cast<qrb::EVectorWidth>(state.range(0));
    if (!qrb::hasVectorWidth(width)) {
        state.SkipWithError("not on this processor");
        return;
    }
    const qrb::CGainCurve curve = qrb::makeGainCurve(0.25, 6.0);
    const qrb::FGainKernel kernel = qrb::gainKernels(width).gain[0][0];
    run(state, makeLevels(), [&](const double* in, double* out) { kernel(curve, kThreshold, in, out, kBlockLength); });
}

/// One division a sample that waits for the last one: less than any stage of a follower has to do.
void divisions(benchmark::State& state)
{
    run(state, makeLevels(), [](const double* in, double* out) {
        double y = 1.0;
        for (std::size_t i = 0; i < kBlockLength; ++i)
            out[i] = y = in[i] / (y + 1.0);
    });
}

void follower(benchmark::State& state)
{
    const bool isFeedback = state.range(0) != 0;
    qrb::CFollowerSettings settings;
    settings.attack = 0.02;
    settings.attackMode = settings.releaseMode = qrb::EFollowerMode::slow;
    settings.isInverse = true;
    settings.isFeedback = isFeedback;
    settings.punch = 0.5;
    const qrb::CFollower follower = qrb::makeFollower(settings, 48000.0);
    const auto count = static_cast<std::size_t>(state.range(1));
    std::vector<qrb::CFollowerState> states(count, qrb::restOfFollower(settings));
    std::vector<CBlock> outs(count, CBlock(kBlockLength));
    run(state, makeLevels(), [&](const double* in, double* out) {
        std::vector<qrb::CFollowerLine> lines;
        for (std::size_t i = 0; i < count; ++i)
            lines.push_back({&follower, &states[i], in, nullptr, i == 0 ? out : outs[i].data()});
        qrb::runFollowers(qrb::followerLoop(settings, false), lines, kBlockLength);
    });
}

void tube(benchmark::State& state)
{
    qrb::CTubeSettings settings;
    settings.curves[0] = {3.5, 0.9, 2.9, 1.0};
    settings.curves[1] = {5.1, 0.6, 20.0, 2.1};
    settings.morphGain = 0.9;
    settings.drive = 3.0;
    settings.isBlockedByFeedback = state.range(0) != 0;
    const qrb::CTube design = qrb::makeTube(settings, 48000.0);
    const auto count = static_cast<std::size_t>(state.range(1));
    const qrb::CTubeState rest = qrb::restOfTube(design, settings.isBlockedByFeedback);
    std::vector<qrb::CTubeState> states(count, rest);
    std::vector<CBlock> outs(count, CBlock(kBlockLength));
    run(state, makeAudio(), [&](const double* in, double* out) {
        std::vector<qrb::CTubeLine> lines;
        for (std::size_t i = 0; i < count; ++i)
            lines.push_back({&design, &states[i], in, i == 0 ? out : outs[i].data()});
        qrb::runTubes(qrb::tubeLoop(settings.isBlockedByFeedback, false), lines, kBlockLength);
    });
}

BENCHMARK(copyOnly);
BENCHMARK(clip);
BENCHMARK(gainLibm);
BENCHMARK(gainLibmvec);
BENCHMARK(gain)->ArgName("width")->Arg(0)->Arg(1)->Arg(2);
BENCHMARK(divisions);
BENCHMARK(follower)->ArgNames({"feedback", "lines"})->ArgsProduct({{0, 1}, {1, 2, 4, 6}});
BENCHMARK(tube)->ArgNames({"feedback", "lines"})->ArgsProduct({{0, 1}, {1, 2, 4, 6}});

} // namespace

BENCHMARK_MAIN();
