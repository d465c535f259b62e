// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CDSPModDelay.h"

#include <benchmark/benchmark.h>

#include <algorithm>

namespace {

constexpr int kBlockLength = 512;

/// What no delay can beat: one copy of the block.
void copyOnly(benchmark::State& state)
{
    qrb::CSampleBufferPool pool;
    qrb::CSampleBuffer in = pool.getSilence(kBlockLength);
    for (auto _ : state) {
        qrb::CSampleBuffer out = pool.get(kBlockLength);
        std::copy(in.data(), in.data() + kBlockLength, out.data());
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kBlockLength);
}

/// The ring's block size is the argument; the delay stands still.
void standing(benchmark::State& state)
{
    qrb::CSampleBufferPool pool;
    qrb::CDSPModDelay delay(pool);
    delay.setBlockSize(static_cast<int>(state.range(0)));
    delay.setDelay(723);
    const qrb::CSampleBuffer in = pool.getSilence(kBlockLength);
    for (auto _ : state) {
        const qrb::CSampleBuffer out = delay.process(in, kBlockLength);
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kBlockLength);
}

/// Each block starts the next transition, so that a fade always runs.
void fading(benchmark::State& state)
{
    qrb::CSampleBufferPool pool;
    qrb::CDSPModDelay delay(pool);
    delay.setBlockSize(static_cast<int>(state.range(0)));
    delay.setFadeLength(kBlockLength);
    delay.setDelay(723);
    const qrb::CSampleBuffer in = pool.getSilence(kBlockLength);
    int samples = 0;
    for (auto _ : state) {
        delay.setDelay(samples = 700 - samples);
        const qrb::CSampleBuffer out = delay.process(in, kBlockLength);
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kBlockLength);
}

BENCHMARK(copyOnly);
BENCHMARK(standing)->Arg(64)->Arg(512)->Arg(1024);
BENCHMARK(fading)->Arg(64)->Arg(512)->Arg(1024);

} // namespace

BENCHMARK_MAIN();
