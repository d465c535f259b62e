// SPDX-License-Identifier: GPL-3.0-or-later
// The pool allocator against the system's, taking and giving back blocks of mixed sizes.
#include "Core/CQrbMemAllocator.h"

#include <array>
#include <benchmark/benchmark.h>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <vector>

namespace {

struct CPooled {
    static void* take(std::size_t size) { return qrb::CQrbMemAllocator::allocate(size); }
    static void giveBack(void* block) { qrb::CQrbMemAllocator::release(block); }
};

struct CSystemWide {
    static void* take(std::size_t size) { return std::malloc(size); }
    static void giveBack(void* block) { std::free(block); }
};

/// Each step gives back a random one of the blocks held and takes another; all randomness is drawn beforehand.
template <typename Allocator>
void benchMixed(benchmark::State& state)
{
    const auto largest = static_cast<unsigned>(state.range(0));
    const auto held = static_cast<std::size_t>(state.range(1));
    std::mt19937 random(static_cast<unsigned>(state.thread_index()) + 1);
    struct CStep {
        std::uint32_t slot;
        std::uint32_t size;
    };
    std::vector<CStep> steps(1 << 14);
    for (CStep& step : steps) {
        step = {static_cast<std::uint32_t>(random() % held),
                16 + static_cast<std::uint32_t>(random() % (largest - 15))};
    }
    std::vector<void*> blocks(held, nullptr);
    for (void*& block : blocks) {
        block = Allocator::take(16 + random() % (largest - 15));
    }
    std::size_t at = 0;
    for (auto _ : state) {
        const CStep step = steps[at++ & (steps.size() - 1)];
        Allocator::giveBack(blocks[step.slot]);
        blocks[step.slot] = Allocator::take(step.size);
        *static_cast<volatile char*>(blocks[step.slot]) = 1;
    }
    for (void* block : blocks) {
        Allocator::giveBack(block);
    }
    state.SetItemsProcessed(state.iterations());
}

void sizesAndThreads(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"largest", "held"})->Args({64, 100})->Args({4080, 100})->Args({4080, 2000});
    bench->Threads(1)->Threads(2)->UseRealTime();
}

BENCHMARK_TEMPLATE(benchMixed, CPooled)->Apply(sizesAndThreads);
BENCHMARK_TEMPLATE(benchMixed, CSystemWide)->Apply(sizesAndThreads);

} // namespace

BENCHMARK_MAIN();
