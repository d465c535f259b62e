// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CAudioFilterFIRLPGen.h"
#include "Audio/Filters/CAudioFilterParams.h"
#include "Audio/Filters/CAudioFilterStageList.h"
#include "Audio/Filters/CFilterBank.h"
#include "Audio/Filters/CFilterFIR.h"
#include "Audio/Filters/CPhasedFIR.h"
#include "Audio/Processes/RateMath.h"
#include "Platform/CBlockTransformPool.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

// Two lines of 512 samples up by half-band stages and down again, as the resamplers do it without the graph
// around them; "ns/frame" is one sample of both lines at the lower rate. Beside it the same with the zeros really there
// and all samples made, and a copy of the same samples.
namespace {

constexpr std::size_t kLength = 512;
constexpr std::size_t kLines = 2;
constexpr int kMaxStages = 3;

qrb::CAudioFilterStageList makeFilter(bool isSteep)
{
    static constexpr double kSteepA[] = {0.0358327884310621, 0.2720401433964577, 0.5720571972357002,
                                         0.8271247619973238};
    static constexpr double kSteepB[] = {0.1340901419430669, 0.4243248712718684, 0.7062921421386392,
                                         0.9415030941737552};
    static constexpr double kSoftA[] = {0.042454709865267684, 0.39331989319032801};
    static constexpr double kSoftB[] = {0.17073985049749907, 0.74571358872022298};
    qrb::CAudioFilterStageList list;
    if (isSteep)
        list.append(static_cast<qrb::EFilterKind>(4), kSteepA, kSteepB, nullptr);
    else
        list.append(static_cast<qrb::EFilterKind>(2), kSoftA, kSoftB, nullptr);
    return list;
}

/// Samples of all lines at each rate.
struct CRates {
    std::vector<double> samples[kMaxStages + 1][kLines];

    CRates()
    {
        for (int rate = 0; rate <= kMaxStages; ++rate)
            for (auto& line : samples[rate]) {
                line.resize(kLength << rate);
                for (std::size_t n = 0; n < line.size(); ++n)
                    line[n] = std::sin(0.1 * static_cast<double>(n));
            }
    }
    /// Runs a filter in place.
    void filter(qrb::CFilterBank& bank, int rate)
    {
        double* const lines[kLines] = {samples[rate][0].data(), samples[rate][1].data()};
        bank.run(lines, lines, samples[rate][0].size());
    }
};

void report(benchmark::State& state)
{
    state.counters["ns/frame"] = benchmark::Counter(static_cast<double>(state.iterations()) * kLength * 1e-9,
                                                    benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

/// The filters of both ways.
struct CBanks {
    explicit CBanks(int stages)
    {
        for (int stage = 0; stage < stages; ++stage) {
            for (qrb::CFilterBank* bank : {&up[stage], &down[stage]}) {
                bank->setLineCount(kLines);
                bank->apply(makeFilter(stage == 0), 44100.0 * (2 << stage));
            }
        }
    }

    qrb::CFilterBank up[kMaxStages];
    qrb::CFilterBank down[kMaxStages];
};

void plainUpAndDown(benchmark::State& state)
{
    const int stages = static_cast<int>(state.range(0));
    CRates rates;
    CBanks banks(stages);
    auto& [up, down] = banks;
    for (auto _ : state) {
        for (int stage = 0; stage < stages; ++stage) {
            for (std::size_t i = 0; i < kLines; ++i)
                qrb::stuffZeros(rates.samples[stage][i], rates.samples[stage + 1][i]);
            rates.filter(up[stage], stage + 1);
        }
        for (int stage = stages - 1; stage >= 0; --stage) {
            rates.filter(down[stage], stage + 1);
            for (std::size_t i = 0; i < kLines; ++i)
                qrb::takeEverySecond(rates.samples[stage + 1][i], rates.samples[stage][i]);
        }
        benchmark::ClobberMemory();
    }
    report(state);
}

void recursiveUpAndDown(benchmark::State& state)
{
    const int stages = static_cast<int>(state.range(0));
    CRates rates;
    CBanks banks(stages);
    auto& [up, down] = banks;
    for (auto _ : state) {
        double* lines[kMaxStages + 1][kLines];
        for (int rate = 0; rate <= stages; ++rate)
            for (std::size_t i = 0; i < kLines; ++i)
                lines[rate][i] = rates.samples[rate][i].data();
        for (int stage = 0; stage < stages; ++stage)
            up[stage].runUp(lines[stage], lines[stage + 1], kLength << stage);
        for (int stage = stages - 1; stage >= 0; --stage)
            down[stage].runDown(lines[stage + 1], lines[stage], kLength << stage);
        benchmark::ClobberMemory();
    }
    report(state);
}

struct CTapsRequest {
    double length;
    double frequency;
    double beta;
};
constexpr CTapsRequest kSteepUp{0.008, 10650.0, 16.0};
constexpr CTapsRequest kSteepDown{0.023, 11000.0, 16.0};
constexpr CTapsRequest kSoft{0.00081, 10200.0, 16.3};

std::vector<double> makeTaps(const CTapsRequest& request)
{
    qrb::CAudioFilterParams params;
    params.set("length", request.length);
    params.set("freq", request.frequency);
    params.set("beta", request.beta);
    qrb::CAudioFilterStageList list;
    qrb::CAudioFilterFIRLPGen().design(list, 44100.0, params, nullptr);
    const auto taps = list.stages()[0].b.span();
    return {taps.begin(), taps.end()};
}

/// The filters of a doubling for each line.
template <class Filter>
struct CLinearPhase {
    Filter up[kMaxStages][kLines];
    Filter down[kMaxStages][kLines];

    explicit CLinearPhase(int stages)
    {
        static qrb::platform::CBlockTransformPool plans;
        for (int stage = 0; stage < stages; ++stage) {
            for (std::size_t i = 0; i < kLines; ++i) {
                if (stage == 0) {
                    up[stage][i].setPartitioned(makeTaps(kSteepUp), 7, plans);
                    down[stage][i].setPartitioned(makeTaps(kSteepDown), 7, plans);
                } else {
                    up[stage][i].setZeroLatency(makeTaps(kSoft), plans);
                    down[stage][i].setZeroLatency(makeTaps(kSoft), plans);
                }
            }
        }
    }
};

void plainLinearPhaseUpAndDown(benchmark::State& state)
{
    const int stages = static_cast<int>(state.range(0));
    CRates rates;
    CRates made;
    CLinearPhase<qrb::CFilterFIR> filters(stages);
    for (auto _ : state) {
        for (int stage = 0; stage < stages; ++stage) {
            for (std::size_t i = 0; i < kLines; ++i) {
                auto& stuffed = made.samples[stage + 1][i];
                qrb::stuffZeros(rates.samples[stage][i], stuffed);
                filters.up[stage][i].process(stuffed.data(), rates.samples[stage + 1][i].data(), stuffed.size());
            }
        }
        for (int stage = stages - 1; stage >= 0; --stage) {
            for (std::size_t i = 0; i < kLines; ++i) {
                auto& filtered = made.samples[stage + 1][i];
                filters.down[stage][i].process(rates.samples[stage + 1][i].data(), filtered.data(), filtered.size());
                qrb::takeEverySecond(filtered, rates.samples[stage][i]);
            }
        }
        benchmark::ClobberMemory();
    }
    report(state);
}

void linearPhaseUpAndDown(benchmark::State& state)
{
    const int stages = static_cast<int>(state.range(0));
    const auto& kernels = qrb::convolverKernels();
    CRates rates;
    CLinearPhase<qrb::CPhasedFIR> filters(stages);
    std::vector<double> even(kLength << kMaxStages);
    std::vector<double> odd(kLength << kMaxStages);
    for (auto _ : state) {
        for (int stage = 0; stage < stages; ++stage) {
            const std::size_t pairs = kLength << stage;
            for (std::size_t i = 0; i < kLines; ++i) {
                double* const in = rates.samples[stage][i].data();
                for (std::size_t n = 0; n < pairs; ++n)
                    in[n] *= 2.0;
                filters.up[stage][i].process({in, nullptr}, {even.data(), odd.data()}, pairs);
                kernels.interleave(even.data(), odd.data(), rates.samples[stage + 1][i].data(), pairs);
            }
        }
        for (int stage = stages - 1; stage >= 0; --stage) {
            const std::size_t pairs = kLength << stage;
            for (std::size_t i = 0; i < kLines; ++i) {
                kernels.takeApart(rates.samples[stage + 1][i].data(), even.data(), odd.data(), pairs);
                filters.down[stage][i].process({even.data(), odd.data()}, {rates.samples[stage][i].data(), nullptr},
                                               pairs);
            }
        }
        benchmark::ClobberMemory();
    }
    report(state);
}

void rateChangesAlone(benchmark::State& state)
{
    const int stages = static_cast<int>(state.range(0));
    CRates rates;
    for (auto _ : state) {
        for (int stage = 0; stage < stages; ++stage)
            for (std::size_t i = 0; i < kLines; ++i)
                qrb::stuffZeros(rates.samples[stage][i], rates.samples[stage + 1][i]);
        for (int stage = stages - 1; stage >= 0; --stage)
            for (std::size_t i = 0; i < kLines; ++i)
                qrb::takeEverySecond(rates.samples[stage + 1][i], rates.samples[stage][i]);
        benchmark::ClobberMemory();
    }
    report(state);
}

void floorCopy(benchmark::State& state)
{
    const int stages = static_cast<int>(state.range(0));
    CRates rates;
    CRates copies;
    for (auto _ : state) {
        for (int rate = 0; rate < stages; ++rate)
            for (std::size_t i = 0; i < kLines; ++i) {
                std::ranges::copy(rates.samples[rate + 1][i], copies.samples[rate + 1][i].begin());
                std::ranges::copy(rates.samples[rate][i], copies.samples[rate][i].begin());
            }
        benchmark::ClobberMemory();
    }
    report(state);
}

BENCHMARK(recursiveUpAndDown)->DenseRange(1, kMaxStages);
BENCHMARK(plainUpAndDown)->DenseRange(1, kMaxStages);
BENCHMARK(linearPhaseUpAndDown)->DenseRange(1, kMaxStages);
BENCHMARK(plainLinearPhaseUpAndDown)->DenseRange(1, kMaxStages);
BENCHMARK(rateChangesAlone)->DenseRange(1, kMaxStages);
BENCHMARK(floorCopy)->DenseRange(1, kMaxStages);

} // namespace

BENCHMARK_MAIN();
