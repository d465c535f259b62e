// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CFilterBank.h"
#include "Audio/Filters/FilterKernels.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <vector>

// Five biquads on two lines of 512 samples; "ns/frame" is one sample of both lines.
namespace {

constexpr std::size_t kLength = 512;
constexpr std::size_t kStages = 5;
constexpr std::size_t kLines = 2;

qrb::CAudioFilterStageList makeDesign(std::size_t first, std::size_t count)
{
    qrb::CAudioFilterStageList list;
    for (std::size_t i = first; i < first + count; ++i) {
        const double w = 0.02 + 0.3 * static_cast<double>(i);
        const double alpha = 0.4 * std::sin(w);
        const std::array<double, 3> b = {1.0 + alpha * 1.5, -2.0 * std::cos(w), 1.0 - alpha * 1.5};
        const std::array<double, 3> a = {1.0 + alpha / 1.5, -2.0 * std::cos(w), 1.0 - alpha / 1.5};
        list.appendBiquad(qrb::EFilterKind::biquad, b, a, nullptr);
    }
    return list;
}

struct CSignals {
    std::vector<double> in[kLines];
    std::vector<double> out[kLines];
    const double* inputs[kLines];
    double* outputs[kLines];

    CSignals()
    {
        for (std::size_t i = 0; i < kLines; ++i) {
            for (std::size_t n = 0; n < kLength; ++n)
                in[i].push_back(std::sin(0.1 * static_cast<double>(n * (i + 1))));
            out[i].resize(kLength);
            inputs[i] = in[i].data();
            outputs[i] = out[i].data();
        }
    }
};

void report(benchmark::State& state)
{
    state.counters["ns/frame"] = benchmark::Counter(static_cast<double>(state.iterations()) * kLength * 1e-9,
                                                    benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

/// The floor of what one would write first: direct form II, stage after stage, line after line.
void plainLoop(benchmark::State& state)
{
    struct CPlain {
        double b0, b1, b2, a1, a2, w1, w2;
    };
    std::vector<CPlain> stages;
    const qrb::CAudioFilterStageList list = makeDesign(0, kStages);
    for (std::size_t line = 0; line < kLines; ++line)
        for (const qrb::CAudioFilterStage& s : list.stages())
            stages.push_back({s.b[0], s.b[1], s.b[2], s.a[0], s.a[1], 0.0, 0.0});
    CSignals signals;
    for (auto _ : state) {
        for (std::size_t line = 0; line < kLines; ++line) {
            const double* in = signals.inputs[line];
            double* out = signals.outputs[line];
            for (std::size_t k = 0; k < kStages; ++k) {
                CPlain s = stages[line * kStages + k];
                for (std::size_t n = 0; n < kLength; ++n) {
                    const double w = in[n] - s.a2 * s.w2 - s.a1 * s.w1;
                    out[n] = s.b0 * w + (s.b1 * s.w1 + s.b2 * s.w2);
                    s.w2 = s.w1;
                    s.w1 = w;
                }
                stages[line * kStages + k] = s;
                in = out;
            }
        }
        benchmark::ClobberMemory();
    }
    report(state);
}

/// One bank of all stages, as designers in series give it.
void bankOfFive(benchmark::State& state)
{
    qrb::CFilterBank bank;
    bank.setLineCount(kLines);
    bank.apply(makeDesign(0, kStages), 44100.0);
    CSignals signals;
    for (auto _ : state) {
        bank.run(signals.inputs, signals.outputs, kLength);
        benchmark::ClobberMemory();
    }
    report(state);
}

/// Five banks of a stage each, as nodes in series run them; the argument is the number of lines side by side.
void fiveBanks(benchmark::State& state)
{
    const auto lines = static_cast<std::size_t>(state.range(0));
    qrb::CFilterBank banks[kStages][kLines];
    for (std::size_t k = 0; k < kStages; ++k) {
        for (std::size_t i = 0; i < kLines / lines; ++i) {
            banks[k][i].setLineCount(lines);
            banks[k][i].apply(makeDesign(k, 1), 44100.0);
        }
    }
    CSignals signals;
    for (auto _ : state) {
        const double* const* in = signals.inputs;
        for (auto& bank : banks) {
            for (std::size_t i = 0; i < kLines / lines; ++i)
                bank[i].run(in + i * lines, signals.outputs + i * lines, kLength);
            in = signals.outputs;
        }
        benchmark::ClobberMemory();
    }
    report(state);
}

/// The same while every stage fades, block after block.
void fadingBanks(benchmark::State& state)
{
    qrb::CFilterBank bank;
    bank.setLineCount(kLines);
    CSignals signals;
    std::size_t turn = 0;
    for (auto _ : state) {
        bank.apply(makeDesign(turn++ % 2, kStages), 44100.0);
        bank.run(signals.inputs, signals.outputs, kLength);
        benchmark::ClobberMemory();
    }
    report(state);
}

/// A half-band stage of 4 coefficients a path on two lines.
void halfBand(benchmark::State& state)
{
    qrb::CAudioFilterStageList list;
    const std::array<double, 4> a = {0.036, 0.272, 0.572, 0.827};
    const std::array<double, 4> b = {0.134, 0.424, 0.706, 0.941};
    list.append(static_cast<qrb::EFilterKind>(4), a, b, nullptr);
    qrb::CFilterBank bank;
    bank.setLineCount(kLines);
    bank.apply(list, 44100.0);
    CSignals signals;
    for (auto _ : state) {
        bank.run(signals.inputs, signals.outputs, kLength);
        benchmark::ClobberMemory();
    }
    report(state);
}

BENCHMARK(plainLoop);
BENCHMARK(bankOfFive);
BENCHMARK(fiveBanks)->Arg(1)->Arg(2);
BENCHMARK(fadingBanks);
BENCHMARK(halfBand);

} // namespace

BENCHMARK_MAIN();
