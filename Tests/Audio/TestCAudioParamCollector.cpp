// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamDeferredTarget.h"
#include "Audio/CAudioParamUpdateInfo.h"
#include "Audio/CAudioParamUpdateList.h"
#include "Audio/CAudioPresetGuard.h"
#include "Core/CUpdateListener.h"
#include "Platform/CSystemThread.h"
#include "Tests/Audio/AudioParamWorld.h"

#include <atomic>
#include <functional>

namespace qrb {
namespace {

class Counter : public CUpdateListener {
public:
    ~Counter() override { detach(); }
    void onUpdate(const CUpdateInfo& info) override
    {
        last = static_cast<const CAudioParamUpdateInfo&>(info).update;
        value = last.elementCount > 0 ? last.values[0] : 0.0;
        ++count;
    }

    CAudioParamUpdate last;
    double value = 0.0;
    int count = 0;
};

class Target final : public CAudioParamDeferredTarget {
public:
    void onDeferred(std::int32_t index, double value) override
    {
        calls.push_back(index * 100 + static_cast<int>(value));
        if (then)
            then();
    }

    std::vector<int> calls;
    std::function<void()> then;
};

TEST(CAudioParamCollector, AliasesLeadToOneParameter)
{
    AudioParamWorld world;
    CAudioParamCollector& params = world.collector;
    EXPECT_EQ(params.findParam("x"), nullptr);
    params.addRename("a", "b");
    params.addRename("b", "c");
    params.addRename("c", "c");
    EXPECT_EQ(&params.getParam("a"), &params.getParam("c"));
    EXPECT_EQ(params.getParam("b").path(), "c");
    EXPECT_TRUE(params.isRenamed("a"));
    EXPECT_FALSE(params.isRenamed("c"));
    params.addRename("ring", "gnir");
    params.addRename("gnir", "ring");
    EXPECT_EQ(&params.getParam("ring"), &params.getParam("ring"));
    CArray<CAudioParam*> all;
    params.listParams(all);
    EXPECT_EQ(all.size(), 2u);
    EXPECT_EQ(params.findParam("x"), nullptr);

    // The newest target counts; turning back and forth between known ones takes nothing.
    params.addRename("a", "d");
    EXPECT_EQ(params.getParam("a").path(), "d");
    const std::uint64_t before = CQrbMemAllocator::allocateCount();
    for (const char* const target : {"b", "d", "b"}) {
        params.addRename("a", target);
        EXPECT_EQ(params.getParam("a").path(), *target == 'b' ? "c" : "d");
    }
    EXPECT_EQ(CQrbMemAllocator::allocateCount(), before);
}

TEST(CAudioParamCollector, TheOwnerKeepsReadersReadyForTheAudioThread)
{
    AudioParamWorld world;
    CAudioParam& param = world.collector.getParam("x");
    const CAudioParamStorage* storage = nullptr;
    std::uint8_t dirty = 0;
    std::uint32_t mask = 0;
    std::size_t ready = 3 * CAudioParamReaderPool::kFirstBlock;
    for (int round = 0; round < 3; ++round) {
        const std::uint64_t before = CQrbMemAllocator::allocateCount();
        for (std::size_t i = 0; i < ready; ++i)
            param.attachReader(storage, &dirty, &mask, -1, -1);
        EXPECT_EQ(CQrbMemAllocator::allocateCount(), before);
        EXPECT_TRUE(world.collector.hasDeferred());
        world.collector.runDeferred();
        ready = (std::size_t{4} << round) * CAudioParamReaderPool::kFirstBlock;
    }
}

TEST(CAudioParamCollector, AQueueThatNobodyEmptiesStopsGrowing)
{
    AudioParamWorld world;
    CAudioParam& param = world.bound("list");
    world.env.setActive(true);
    for (int i = 0; i < 10000; ++i)
        param.setElement(i % 2, 0, i % 10);
    EXPECT_EQ(world.collector.waitingCount(), CAudioParamUpdateQueue::kMergeCount);
    world.collector.flushQueue();
    EXPECT_EQ(param.audioStorage().value(1, 0), 9.0);
    world.env.setActive(false);
    for (int i = 0; i < 100; ++i)
        param.setElement(i % 2, 0, i % 10);
    EXPECT_EQ(world.collector.waitingCount(), 2u);
}

TEST(CAudioParamCollector, ADeferredListArrivesInOneStep)
{
    AudioParamWorld world;
    CAudioParam& list = world.bound("list");
    CAudioParam& one = world.bound("one");
    CAudioParamUpdateList changes;
    list.setElement(0, 0, 7, nullptr, {.deferredList = &changes});
    one.setValue(1, nullptr, {.deferredList = &changes});
    world.collector.flushQueue();
    EXPECT_EQ(list.value(), 7.0);
    EXPECT_EQ(list.audioStorage().value(0, 0), 1.0);
    world.collector.splice(changes);
    EXPECT_TRUE(changes.empty());
    world.collector.flushQueue();
    EXPECT_EQ(list.audioStorage().value(0, 0), 7.0);
    EXPECT_EQ(one.audioStorage().value(0, 0), 1.0);
}

TEST(CAudioParamCollector, CallsWaitUntilNoParameterIsHeld)
{
    AudioParamWorld world;
    int wakes = 0;
    world.collector.setWakeHook([&] { ++wakes; });
    Target target;
    Target gone;
    {
        const CAudioPresetGuard preset(world.collector);
        {
            const CAudioParamGuard outer(world.collector);
            const CAudioParamGuard guard(world.collector);
            world.collector.defer(target, 1, 5.0, guard);
            world.collector.defer(gone, 2, 6.0, guard);
            world.collector.defer(target, 3, 7.0, guard);
            world.collector.runDeferred();
            EXPECT_TRUE(target.calls.empty());
        }
        EXPECT_EQ(wakes, 0);
    }
    EXPECT_EQ(wakes, 1);
    EXPECT_TRUE(world.collector.hasDeferred());
    // One call may take another target's calls back, or run the list itself.
    target.then = [&] {
        world.collector.cancelDeferred(gone);
        world.collector.runDeferred();
    };
    world.collector.runDeferred();
    EXPECT_EQ(target.calls, (std::vector<int>{105, 307}));
    EXPECT_TRUE(gone.calls.empty());
    world.collector.runDeferred();
    EXPECT_EQ(target.calls.size(), 2u);
}

TEST(CAudioParamCollector, ChangesOfTheAudioThreadNeitherWaitNorAllocate)
{
    AudioParamWorld world;
    CAudioParam& param = world.bound("list");
    world.env.setActive(true);
    int wakes = 0;
    world.collector.setWakeHook([&] { ++wakes; });
    Counter listener;
    listener.attach(&world.collector, CAudioParamCollector::listenerKey(param));
    const CAudioParamStorage* storage = nullptr;
    std::uint8_t dirty = 0;
    std::uint32_t mask = 0;
    param.detachReader(param.attachReader(storage, &dirty, &mask, -1, -1));

    std::vector<CAudioParamReader*> readers(64);
    const std::uint64_t before = CQrbMemAllocator::allocateCount();
    for (CAudioParamReader*& reader : readers)
        reader = param.attachReader(storage, &dirty, &mask, -1, -1);
    for (int block = 0; block < 500; ++block) {
        for (int i = 0; i < 3; ++i)
            EXPECT_TRUE(param.trySetElement(0, i, block % 10));
        world.collector.flushQueue();
        EXPECT_EQ(storage->value(0, 2), block % 10);
    }
    for (CAudioParamReader* const reader : readers)
        param.detachReader(reader);
    EXPECT_EQ(CQrbMemAllocator::allocateCount(), before);

    EXPECT_EQ(listener.count, 0);
    EXPECT_EQ(wakes, 1);
    world.collector.runDeferred();
    EXPECT_EQ(listener.count, 1);
    EXPECT_EQ(listener.last.elementCount, 3);
    EXPECT_EQ(listener.value, 9.0);
}

TEST(CAudioParamCollector, ApplyingChangesOfOthersAllocatesNothing)
{
    AudioParamWorld world;
    CAudioParam& list = world.bound("list");
    CAudioParam& text = world.bound("text");
    for (int round = 1; round < 40; ++round) {
        // Groups, elements and texts that were not there before: the sender brings the room.
        for (int element = 0; element < round; element += 3)
            list.setElement(round % 32, element, 1.0);
        list.update(AudioParamRecord(list.info()->format, kAudioParamTemplateGroup, 0,
                                     std::vector<double>(static_cast<std::size_t>(round), 2.0), true)
                        .update);
        text.setString(round % 8, round, CString("a text that is too long to be inside of its object"));
        CAudioParamUpdateList changes;
        list.setElement((round + 7) % 32, round + 20, 3.0, nullptr, {.deferredList = &changes});
        world.collector.splice(changes);
        const std::uint64_t before = CQrbMemAllocator::allocateCount();
        world.collector.flushQueue();
        EXPECT_EQ(CQrbMemAllocator::allocateCount(), before) << round;
    }
    // Another shape begins with no room at all.
    list.bindInfo(world.info("pair"));
    world.collector.flushQueue();
    list.setElement(20, 5, std::vector<double>{1.0, 2.0});
    const std::uint64_t before = CQrbMemAllocator::allocateCount();
    world.collector.flushQueue();
    EXPECT_EQ(CQrbMemAllocator::allocateCount(), before);
    EXPECT_EQ(list.audioStorage().value(20, 5, 1), 2.0);
}

TEST(CAudioParamCollector, TheAudioThreadDoesNotWaitForABusyParameter)
{
    AudioParamWorld world;
    CAudioParam& param = world.bound("one");
    bool isSet = true;
    {
        const CAudioParamGuard guard(world.collector);
        platform::CSystemThread audio;
        ASSERT_EQ(audio.start(
                      "audio", [&] { isSet = param.trySetElement(0, 0, 1.0); }, platform::EThreadPriority::normal),
                  0);
        audio.join();
    }
    EXPECT_FALSE(isSet);
    EXPECT_TRUE(param.trySetElement(0, 0, 1.0));
    EXPECT_EQ(param.value(), 1.0);
}

TEST(CAudioParamCollector, SendersAndTheAudioThreadWorkBesideEachOther)
{
    AudioParamWorld world;
    CAudioParam& list = world.bound("list");
    CAudioParam& text = world.bound("text");
    world.env.setActive(true);
    std::atomic<int> running{2};
    const auto sender = [&](int seed) {
        for (int i = 0; i < 400; ++i) {
            list.setElement((i + seed) % 8, i % 20, i % 10);
            text.setString(i % 4, i % 6, CString("text"));
            if (i % 50 == seed)
                list.resetValues(-1, -1);
            (void)list.value(seed, 3);
        }
        --running;
    };
    platform::CSystemThread first;
    platform::CSystemThread second;
    ASSERT_EQ(first.start(
                  "sender", [&] { sender(0); }, platform::EThreadPriority::normal),
              0);
    ASSERT_EQ(second.start(
                  "sender", [&] { sender(1); }, platform::EThreadPriority::normal),
              0);
    const CAudioParamStorage* storage = nullptr;
    std::uint8_t dirty = 0;
    std::uint32_t mask = 0;
    CAudioParamReader* const reader = list.attachReader(storage, &dirty, &mask, -1, -1);
    double sum = 0.0;
    while (running.load() > 0) {
        (void)list.trySetElement(0, 0, 5.0);
        world.collector.flushQueue();
        sum += storage->value(3, 2);
    }
    first.join();
    second.join();
    world.collector.flushQueue();
    list.detachReader(reader);
    EXPECT_GE(sum, 0.0);
    const CAudioParamGuard guard(world.collector);
    EXPECT_EQ(bytesOf(list.audioStorage()), bytesOf(list.editStorage(guard)));
    EXPECT_EQ(bytesOf(text.audioStorage()), bytesOf(text.editStorage(guard)));
}

} // namespace
} // namespace qrb
