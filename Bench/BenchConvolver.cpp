// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CFilterFIR.h"
#include "Audio/Filters/PartitionSearch.h"
#include "Platform/CBlockTransformPool.h"
#include "Platform/CRealFFTPlan.h"

#include <benchmark/benchmark.h>

#include <bit>
#include <cmath>
#include <vector>

// One line in calls of 128 samples; "ns/sample" is the mean over whole cycles of the largest block.
namespace {

constexpr std::size_t kCall = 128;
constexpr int kLog2Call = 7;

std::vector<double> wave(std::size_t count, double step)
{
    std::vector<double> samples(count);
    for (std::size_t n = 0; n < count; ++n)
        samples[n] = std::sin(step * static_cast<double>(n * n % 8191)) / std::sqrt(static_cast<double>(count));
    return samples;
}

void report(benchmark::State& state, std::size_t samples)
{
    state.counters["ns/sample"] = benchmark::Counter(static_cast<double>(state.iterations() * samples) * 1e-9,
                                                     benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

qrb::platform::CBlockTransformPool& plans()
{
    static qrb::platform::CBlockTransformPool pool;
    return pool;
}

template <class Filter>
void runFilter(benchmark::State& state, Filter& filter)
{
    constexpr std::size_t kLength = 32768;
    const std::vector<double> in = wave(kLength, 0.1);
    std::vector<double> out(kCall);
    for (auto _ : state) {
        for (std::size_t n = 0; n < kLength; n += kCall) {
            filter.process(in.data() + n, out.data(), kCall);
            benchmark::ClobberMemory();
        }
    }
    report(state, kLength);
}

void convolver(benchmark::State& state)
{
    qrb::CFilterFIR filter;
    filter.setPartitioned(wave(static_cast<std::size_t>(state.range(0)), 0.3), kLog2Call, plans());
    runFilter(state, filter);
}

void zeroLatency(benchmark::State& state)
{
    qrb::CFilterFIR filter;
    filter.setZeroLatency(wave(static_cast<std::size_t>(state.range(0)), 0.3), plans());
    runFilter(state, filter);
}

/// What the same partitions cannot do without: a pair of transforms a block, and the products of their spectra.
void transformsAndProducts(benchmark::State& state)
{
    constexpr std::size_t kLength = 32768;
    const qrb::CPartitionRuns runs = qrb::findPartitions(static_cast<std::size_t>(state.range(0)), kLog2Call - 4);
    const auto& kernels = qrb::convolverKernels();
    qrb::CAlignedSamples samples(kLength);
    // Half a page off: what is written at the page offset that is read next would be waited for.
    constexpr std::size_t kOff = 256;
    qrb::CAlignedSamples scratch(kLength + kOff);
    double* const work = scratch.data() + kOff;
    std::vector<qrb::CAlignedSamples> spectra;
    for (const qrb::CPartitionRun& run : runs) {
        for (int list = 0; list < 2; ++list)
            spectra.emplace_back(2 * qrb::partitionBlock(run.level) * run.count + qrb::kSpectrumTile);
    }
    for (auto _ : state) {
        for (std::size_t i = 0; i < runs.size(); ++i) {
            const std::size_t block = qrb::partitionBlock(runs[i].level);
            const qrb::CSpectrumShape shape{block / qrb::kSpectrumTileBins, runs[i].count};
            const auto& plan = plans().plan(static_cast<unsigned>(std::countr_zero(block)));
            double* history = spectra[2 * i].data();
            for (std::size_t n = 0; n < kLength; n += block) {
                kernels.transform(plan, samples.data(), samples.data() + block, work, history,
                                  shape.count * qrb::kSpectrumTile);
                kernels.sumProducts(shape, history, 0, spectra[2 * i + 1].data(), work, false);
                kernels.transformBack(plan, work, samples.data());
                benchmark::ClobberMemory();
            }
        }
    }
    report(state, kLength);
}

/// A block's way there and back.
void blockTransforms(benchmark::State& state)
{
    const auto block = static_cast<std::size_t>(state.range(0));
    const auto& kernels = qrb::convolverKernels();
    const auto& plan = plans().plan(static_cast<unsigned>(std::countr_zero(block)));
    qrb::CAlignedSamples samples(2 * block);
    qrb::CAlignedSamples spectrum(2 * block);
    for (auto _ : state) {
        kernels.transform(plan, samples.data(), samples.data() + block, spectrum.data(), spectrum.data(),
                          qrb::kSpectrumTile);
        kernels.transformBack(plan, spectrum.data(), samples.data());
        benchmark::ClobberMemory();
    }
    report(state, block);
}

/// The same by general transforms of real signals.
void realTransforms(benchmark::State& state)
{
    const auto block = static_cast<std::size_t>(state.range(0));
    const qrb::platform::CRealFFTPlan plan(static_cast<unsigned>(std::countr_zero(2 * block)));
    qrb::CAlignedSamples samples(2 * block);
    qrb::CAlignedSamples terms(2 * block + 2);
    for (auto _ : state) {
        plan.forward(samples.data(), terms.data());
        plan.inverse(terms.data(), samples.data());
        benchmark::ClobberMemory();
    }
    report(state, block);
}

/// Tap by tap, sample by sample.
void plainDotProducts(benchmark::State& state)
{
    const std::vector<double> taps = wave(static_cast<std::size_t>(state.range(0)), 0.3);
    const std::vector<double> in = wave(kCall + taps.size(), 0.1);
    std::vector<double> out(kCall);
    for (auto _ : state) {
        for (std::size_t n = 0; n < kCall; ++n) {
            double sum = 0.0;
            for (std::size_t k = 0; k < taps.size(); ++k)
                sum += taps[k] * in[n + k];
            out[n] = sum;
        }
        benchmark::ClobberMemory();
    }
    report(state, kCall);
}

BENCHMARK(blockTransforms)->RangeMultiplier(2)->Range(16, 16384);
BENCHMARK(realTransforms)->RangeMultiplier(2)->Range(16, 16384);
BENCHMARK(transformsAndProducts)->Arg(300)->Arg(1024)->Arg(4096)->Arg(65536);
BENCHMARK(convolver)->Arg(300)->Arg(1024)->Arg(4096)->Arg(65536);
BENCHMARK(plainDotProducts)->Arg(39);
BENCHMARK(zeroLatency)->Arg(39)->Arg(1024);

} // namespace

BENCHMARK_MAIN();
