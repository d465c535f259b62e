// SPDX-License-Identifier: GPL-3.0-or-later
// What the built module costs a host: loading, instances, memory, idle blocks, a session of a hundred.
#include "Platform/Clock.h"
#include "Tools/Vst3Host/CModuleFile.h"
#include "Tools/Vst3Host/CVstHost.h"
#include "Tools/Vst3Host/ResidentBytes.h"

#include <benchmark/benchmark.h>
#include <memory>

namespace {

using namespace Steinberg::Vst;
using qrb::platform::clockSeconds;

constexpr double kRate = 44100.0;
constexpr int kBlock = 512;
constexpr Steinberg::Vst::ParamID kBypass = 0;

/// An active stereo instance at 1X, with a block of noise to play.
class CInstance {
public:
    explicit CInstance(Steinberg::IPluginFactory& factory) : m_host(factory), m_left(kBlock), m_right(kBlock)
    {
        m_host.activateBuses(false);
        m_host.setup(kRate, kSample32, kBlock);
        m_host.activate();
        std::uint32_t seed = 1;
        for (std::size_t i = 0; i < m_left.size(); ++i) {
            seed = seed * 1664525u + 1013904223u;
            m_left[i] = m_right[i] = static_cast<float>(seed >> 8) / 67108864.0F - 0.125F;
        }
    }
    ~CInstance() { m_host.stop(); }

    vst3::CVstHost& host() { return m_host; }
    void play(std::span<const vst3::CPoint> points = {})
    {
        void* const inputs[] = {m_left.data(), m_right.data()};
        void* const outputs[] = {m_outLeft, m_outRight};
        m_host.process({inputs, {}, outputs, kBlock}, points);
    }

private:
    vst3::CVstHost m_host;
    std::vector<float> m_left;
    std::vector<float> m_right;
    float m_outLeft[kBlock] = {};
    float m_outRight[kBlock] = {};
};

using CInstances = std::vector<std::unique_ptr<CInstance>>;

bool failed(benchmark::State& state, const vst3::CModuleFile& module, const std::string& error)
{
    if (module.factory() == nullptr)
        state.SkipWithError(error.c_str());
    return module.factory() == nullptr;
}

CInstances make(const vst3::CModuleFile& module, std::size_t count)
{
    CInstances all;
    for (std::size_t i = 0; i < count; ++i)
        all.push_back(std::make_unique<CInstance>(*module.factory()));
    return all;
}

/// dlopen, entry, factory; the way back is not measured.
void load(benchmark::State& state)
{
    for (auto _ : state) {
        std::string error;
        const double start = clockSeconds();
        const vst3::CModuleFile module(THUMPCRAFT_MODULE, error);
        state.SetIterationTime(clockSeconds() - start);
        if (failed(state, module, error))
            break;
    }
}
BENCHMARK(load)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

/// Created and activated while as many others are there.
void instance(benchmark::State& state)
{
    std::string error;
    for (auto _ : state) {
        const vst3::CModuleFile module(THUMPCRAFT_MODULE, error);
        if (failed(state, module, error))
            break;
        const CInstances others = make(module, static_cast<std::size_t>(state.range(0)));
        const double start = clockSeconds();
        const CInstance one(*module.factory());
        state.SetIterationTime(clockSeconds() - start);
    }
}
BENCHMARK(instance)->Arg(0)->Arg(1)->Arg(99)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

/// Memory of one of a hundred active instances that have played.
void memory(benchmark::State& state)
{
    std::string error;
    const vst3::CModuleFile module(THUMPCRAFT_MODULE, error);
    if (failed(state, module, error))
        return;
    for (auto _ : state) {
        const CInstances first = make(module, 1);
        first[0]->play();
        const auto before = static_cast<double>(vst3::residentBytes());
        const CInstances more = make(module, 100);
        for (const auto& one : more)
            one->play();
        state.counters["MB_each"] = (static_cast<double>(vst3::residentBytes()) - before) / 100.0 / 1e6;
    }
}
BENCHMARK(memory)->Iterations(1);

/// A block of each of some instances; `core` is their share of one core in real time.
void session(benchmark::State& state, bool isBypassed)
{
    std::string error;
    const vst3::CModuleFile module(THUMPCRAFT_MODULE, error);
    if (failed(state, module, error))
        return;
    const CInstances all = make(module, static_cast<std::size_t>(state.range(0)));
    const vst3::CPoint on[] = {{kBypass, 0, isBypassed ? 1.0 : 0.0}};
    for (const auto& one : all)
        one->play(on);
    for (int block = 0; block < 100; ++block) // fades and first uses
        for (const auto& one : all)
            one->play();
    for (auto _ : state)
        for (const auto& one : all)
            one->play();
    state.counters["core"] = benchmark::Counter(static_cast<double>(state.iterations()) * kBlock / kRate,
                                                benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK_CAPTURE(session, default_program, false)->Arg(1)->Arg(100)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(session, bypassed, true)->Arg(1)->Arg(100)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
