// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CScopedFloatMode.h"
#include "Audio/CopySamples.h"
#include "Audio/Processes/CSpectrumAccumulator.h"
#include "Audio/Processes/CSpectrumFrame.h"
#include "Audio/Processes/MeterKernels.h"
#include "Platform/CRealFFTPlan.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

// A spectrum's frame beside the bare transform of its size, and what a sample costs a meter.
namespace {

std::vector<double> noise(std::size_t count)
{
    std::vector<double> samples(count);
    for (std::size_t n = 0; n < count; ++n)
        samples[n] = std::sin(0.1 * static_cast<double>(n * n % 8191));
    return samples;
}

void bareTransform(benchmark::State& state)
{
    const qrb::platform::CRealFFTPlan plan(static_cast<unsigned>(state.range(0)));
    const std::vector<double> frame = noise(plan.size());
    std::vector<double> terms(plan.size() + 2);
    for (auto _ : state) {
        plan.forward(frame.data(), terms.data());
        benchmark::ClobberMemory();
    }
}

/// With an overlap of one half; a second spectrum where range(2) is not negative.
void spectrumFrame(benchmark::State& state)
{
    const qrb::CScopedFloatMode floatMode; // as in an instance
    const qrb::platform::CRealFFTPlan plan(static_cast<unsigned>(state.range(0)));
    const std::size_t hop = plan.size() / 2;
    const std::vector<double> input = noise(plan.size());
    std::vector<double> samples(2 * plan.size());
    std::vector<double> terms(qrb::CSpectrumFrame::termRoom(plan.size()));
    qrb::CSpectrumAccumulator bins[2];
    std::vector<qrb::CSpectrumAccumulator*> spectra;
    for (std::size_t i = 0; i < 2 && state.range(1 + i) >= 0; ++i) {
        bins[i].start(qrb::CSpectrumAccumulator::kindOf(static_cast<int>(state.range(1 + i))), plan.size());
        spectra.push_back(&bins[i]);
    }
    std::size_t played = 0;
    std::size_t end = plan.size();
    for (auto _ : state) {
        if (end == samples.size()) {
            end = plan.size();
            qrb::copySamples(samples.data() + end, end, samples.data());
        }
        qrb::copySamples(input.data() + played, hop, samples.data() + end);
        end += hop;
        played = (played + hop) % input.size();
        qrb::CSpectrumFrame frame;
        benchmark::DoNotOptimize(frame.transform(plan, samples.data() + (end - plan.size()), terms.data()));
        qrb::CSpectrumAccumulator::add(frame, spectra, {0.1, 0.2});
        benchmark::ClobberMemory();
    }
}

void meter(benchmark::State& state, qrb::FMeterKernel kernel)
{
    constexpr std::size_t kBlock = 512;
    const std::vector<double> samples = noise(kBlock);
    qrb::CMeterLevels levels;
    levels.setAll(1.0);
    for (auto _ : state) {
        kernel({0.01, 0.001, 0.0001}, levels, samples.data(), samples.data(), static_cast<int>(kBlock));
        benchmark::DoNotOptimize(levels);
    }
    state.counters["ns/sample"] = benchmark::Counter(static_cast<double>(state.iterations() * kBlock) * 1e-9,
                                                     benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

BENCHMARK(bareTransform)->Arg(8)->Arg(11)->Arg(13)->Arg(16);
BENCHMARK(spectrumFrame)
    ->ArgsProduct({{8, 11, 13, 16}, {0, 1, 2, 3, 4}, {-1}})
    ->ArgsProduct({{8, 11, 13, 16}, {0}, {3}});
BENCHMARK_CAPTURE(meter, level, qrb::measureLevel);
BENCHMARK_CAPTURE(meter, gainWithBias, qrb::measureGainWithBias);
BENCHMARK_CAPTURE(meter, ratio, qrb::measureRatio);

} // namespace

BENCHMARK_MAIN();
