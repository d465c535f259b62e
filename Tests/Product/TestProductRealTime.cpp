// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamCollector.h"
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Core/CQrbMemAllocator.h"
#include "Tests/Product/CProductRig.h"
#include "Tests/Product/SystemAllocations.h"

#include <barrier>
#include <cstdlib>
#include <gtest/gtest.h>
#include <malloc.h>
#include <memory>
#include <random>
#include <thread>

namespace {

TEST(TestSystemAllocations, AnAllocationIsSeen)
{
    if (!countsSystemAllocations())
        GTEST_SKIP() << "the sanitizers bring an allocator of their own";
    const std::uint64_t before = systemAllocations();
    void* volatile block = std::malloc(100); // volatile, so that the pair is not optimised away
    std::free(block);
    EXPECT_EQ(systemAllocations(), before + 1);
}

/// Plays settled blocks and tells how often the two allocators were called meanwhile.
struct CBlockCost {
    std::uint64_t system = 0;
    std::uint64_t own = 0;
};

CBlockCost costOfBlocks(CProductRig& rig, int channels, const std::vector<qrb::CExternalEvent>& events)
{
    constexpr int kBlock = 512;
    std::vector<float> silence(kBlock, 0.25f);
    std::vector<std::vector<float>> out(static_cast<std::size_t>(channels), std::vector<float>(kBlock));
    std::vector<const void*> inputs(static_cast<std::size_t>(channels), silence.data());
    std::vector<void*> outputs;
    for (std::vector<float>& channel : out)
        outputs.push_back(channel.data());
    rig.start();
    rig.instance().setInputs({channels, false, false});
    rig.instance().setOutputs({channels, false, false});
    CBlockCost cost;
    for (int block = 0; block < 200; ++block) {
        if (block >= 100 && !events.empty())
            rig.instance().addEvent(events[static_cast<std::size_t>(block) % events.size()]);
        const std::uint64_t system = systemAllocations();
        const std::uint64_t own = qrb::CQrbMemAllocator::allocateCount();
        rig.instance().processBlock(inputs.data(), outputs.data(), kBlock);
        if (block >= 150) { // the first use of each size, and of each module for a fade, is behind us
            cost.system += systemAllocations() - system;
            cost.own += qrb::CQrbMemAllocator::allocateCount() - own;
        }
    }
    return cost;
}

TEST(TestProductRealTime, ASettledBlockCallsNoAllocator)
{
    for (const int channels : {2, 8}) {
        CProductRig rig({48000.0, channels, channels, 0});
        for (int channel = 2; channel < channels; ++channel) {
            const std::string place = ":0:" + std::to_string(channel) + "=" + std::to_string(channel + 1);
            rig.set("io-params.in-routing" + place).set("io-params.out-routing" + place);
        }
        rig.set("io-params.ms-pairs:0:0=MS1").set("io-params.ms-pairs:0:1=MS1").set("modThumpcraft.outgain=-3");
        const CBlockCost cost = costOfBlocks(rig, channels, {});
        EXPECT_EQ(cost.system, 0u) << channels << " channels";
        EXPECT_EQ(cost.own, 0u) << channels << " channels";
    }
}

TEST(TestProductRealTime, AutomationOfASettledGraphCallsNoAllocator)
{
    CProductRig rig({});
    render::CRenderInstance::CTarget target;
    std::string error;
    rig.start();
    ASSERT_TRUE(rig.instance().resolve({"modThumpcraft.outgain", 0, 0, "0", 0.0}, target, error)) << error;
    const int index = rig.instance().addTarget(target);
    const auto kind = qrb::EExternalEventKind::parameter;
    const CBlockCost cost = costOfBlocks(rig, 2, {{100, kind, index, 0.5}, {300, kind, index, 0.7}});
    EXPECT_EQ(cost.system, 0u);
    EXPECT_EQ(cost.own, 0u);
}

TEST(TestProductRealTime, ANewPairOfChannelsTakesNothingFromTheSystem)
{
    CProductRig rig({});
    render::CRenderInstance::CTarget target;
    std::string error;
    rig.start();
    ASSERT_TRUE(rig.instance().resolve({"io-params.ms-pairs", 0, 0, "MS1", 0.0}, target, error)) << error;
    const int index = rig.instance().addTarget(target);
    const auto kind = qrb::EExternalEventKind::parameter;
    EXPECT_EQ(costOfBlocks(rig, 2, {{100, kind, index, 0.0}, {300, kind, index, 1.0}}).system, 0u);
}

/// Plays blocks of all lengths, in which host parameters move, and switches programs and rates between them.
void playASession(CProductRig& rig, std::mt19937& random, int blocks)
{
    constexpr int kHostParams = 72;
    constexpr int kPrograms = 17;
    constexpr int kLongest = 600;
    constexpr double kRates[] = {44100.0, 96000.0};
    const CChannels in = makeNoise(2, kLongest);
    CChannels out = in;
    const void* const inputs[] = {in[0].data(), in[1].data()};
    void* const outputs[] = {out[0].data(), out[1].data()};
    render::CRenderInstance& instance = rig.instance();
    for (int block = 0; block < blocks; ++block) {
        if (block % 500 == 499) {
            instance.stop();
            instance.setSampleRate(kRates[random() % 2]);
            instance.start();
        }
        if (block % 25 == 24) {
            const int program = static_cast<int>(random() % kPrograms);
            EXPECT_FALSE(instance.paramRegistry()->setCurrentProgram(program, nullptr));
        }
        const int length = 1 + static_cast<int>(random() % kLongest);
        for (int events = static_cast<int>(random() % 3); events > 0; --events)
            instance.addEvent({static_cast<int>(random() % static_cast<unsigned>(length)),
                               qrb::EExternalEventKind::parameter, static_cast<int>(random() % kHostParams),
                               static_cast<double>(random()) / 4294967296.0});
        instance.processBlock(inputs, outputs, length);
        instance.paramCollector().runDeferred();
    }
}

TEST(TestProductRealTime, ALongSessionTakesNoMoreMemoryThanItsBeginning)
{
    CProductRig rig({});
    rig.start();
    const auto bytesInUse = [] {
        const struct mallinfo2 info = mallinfo2();
        return info.uordblks + info.hblkhd;
    };
    const std::size_t begin = bytesInUse();
    std::size_t chunks = 0;
    std::size_t bytes = 0;
    // The same session again and again, until what it needs is there; then nothing comes to it.
    const int rounds = countsSystemAllocations() ? 7 : 1;
    for (int round = 0; round < rounds; ++round) {
        std::mt19937 random(17);
        playASession(rig, random, 800);
        if (round == rounds - 3) {
            chunks = qrb::CQrbMemAllocator::chunkCount();
            bytes = bytesInUse();
        }
    }
    if (!countsSystemAllocations())
        return;
    EXPECT_EQ(qrb::CQrbMemAllocator::chunkCount(), chunks);
    EXPECT_LE(bytesInUse(), bytes + 1000);
    EXPECT_LE(bytesInUse(), begin + 6'000'000); // blocks of every length at each oversampling
}

TEST(TestProductRealTime, AHundredInstancesOnThreadsOfTheirOwnDoNotDisturbEachOther)
{
    constexpr int kInstances = 100;
    const CChannels in = makeNoise(2, 1500);
    CProductRig alone({});
    const CChannels want = alone.run(in, 512);
    const auto latency = static_cast<std::size_t>(alone.latency());
    std::vector<double> differences(kInstances, 1.0);
    std::barrier together(kInstances);
    std::vector<std::thread> threads;
    for (int instance = 0; instance < kInstances; ++instance)
        threads.emplace_back([&, instance] {
            if (instance % 3 == 0)
                together.arrive_and_wait(); // some are made while others already play or go
            auto rig = std::make_unique<CProductRig>(CProductRig::CShape{});
            if (instance % 3 == 1)
                together.arrive_and_wait();
            const CChannels out = rig->run(in, static_cast<std::size_t>(64 + instance));
            differences[static_cast<std::size_t>(instance)] = largestDifference(out[1], in[1], latency);
            if (instance % 3 == 2)
                together.arrive_and_wait();
            rig.reset();
        });
    for (std::thread& thread : threads)
        thread.join();
    for (const double difference : differences)
        EXPECT_LE(difference, 1e-10);
}

} // namespace
