// SPDX-License-Identifier: GPL-3.0-or-later
// What a block of 512 samples costs in the product's chain with everything neutral, and what copying it costs.
#include "Tools/Render/CProductModule.h"
#include "Tools/Render/CRenderInstance.h"

#include <benchmark/benchmark.h>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int kFrames = 512;

struct CBuffers {
    explicit CBuffers(int channelCount)
        : in(static_cast<std::size_t>(channelCount), std::vector<float>(kFrames)), out(in)
    {
        std::mt19937 engine(1);
        for (std::size_t channel = 0; channel < in.size(); ++channel) {
            for (float& sample : in[channel])
                sample = static_cast<float>(engine()) / 4294967296.0f - 0.5f;
            inputs.push_back(in[channel].data());
            outputs.push_back(out[channel].data());
        }
    }

    std::vector<std::vector<float>> in;
    std::vector<std::vector<float>> out;
    std::vector<const void*> inputs;
    std::vector<void*> outputs;
};

void neutralChain(benchmark::State& state)
{
    const int channels = static_cast<int>(state.range(0));
    std::string error;
    const render::CProductModule module(error);
    render::CRenderInstance instance;
    if (instance.init()) {
        state.SkipWithError("the instance cannot be built");
        return;
    }
    CBuffers buffers(channels);
    instance.setSampleRate(44100.0);
    instance.setInputs({channels, false, false});
    instance.setOutputs({channels, false, false});
    instance.routeChannels(channels, {});
    instance.start();
    for (auto _ : state) {
        instance.processBlock(buffers.inputs.data(), buffers.outputs.data(), kFrames);
        benchmark::ClobberMemory();
    }
    instance.stop();
    state.SetItemsProcessed(state.iterations() * kFrames * channels);
}
BENCHMARK(neutralChain)->Arg(2)->Arg(8);

void copyAlone(benchmark::State& state)
{
    CBuffers buffers(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        for (std::size_t channel = 0; channel < buffers.in.size(); ++channel)
            std::memcpy(buffers.outputs[channel], buffers.inputs[channel], kFrames * sizeof(float));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kFrames * state.range(0));
}
BENCHMARK(copyAlone)->Arg(2)->Arg(8);

} // namespace

BENCHMARK_MAIN();
