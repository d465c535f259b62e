// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamUpdateInfo.h"
#include "Audio/CAudioParamUpdateList.h"
#include "Core/CUpdateListener.h"
#include "Tests/Audio/AudioParamWorld.h"

#include <cmath>
#include <limits>
#include <random>

namespace qrb {
namespace {

/// Writes down what it hears.
class Listener : public CUpdateListener {
public:
    ~Listener() override { detach(); }
    void onUpdate(const CUpdateInfo& info) override
    {
        const auto& change = static_cast<const CAudioParamUpdateInfo&>(info);
        lines.push_back(change.param->path().toUtf8() + " " + std::to_string(change.update.group) + ":" +
                        std::to_string(change.update.firstElement) + "+" + std::to_string(change.update.elementCount) +
                        (change.update.isToEnd ? " end" : ""));
        source = change.sender;
    }

    std::vector<std::string> lines;
    const void* source = nullptr;
};

TEST(CAudioParam, IsUsableOnceItIsBound)
{
    AudioParamWorld world;
    CAudioParam& param = world.collector.getParam("p");
    EXPECT_FALSE(param.setValue(5));
    param.resetValues(-1, -1);
    EXPECT_FALSE(param.load({}, {}));
    world.collector.flushQueue();
    EXPECT_FALSE(param.audioStorage().hasData());

    param.bindInfo(world.info("list"));
    EXPECT_EQ(world.collector.waitingCount(), 2u);
    EXPECT_TRUE(param.setElement(1, 0, 9));
    param.bindInfo(world.info("list"));
    world.collector.flushQueue();
    EXPECT_EQ(param.audioStorage().value(1, 0), 9.0);
    EXPECT_EQ(param.audioStorage().value(0, 2), 3.0);
    // Another definition takes over, and with it its shape.
    param.bindInfo(world.info("text"));
    world.collector.flushQueue();
    EXPECT_EQ(texts(param.audioStorage(), 0), "L|R|IN3|");
    EXPECT_FALSE(param.setElement(0, 0, 1.0));
    EXPECT_TRUE(param.setString(0, 1, "right"));
    EXPECT_EQ(param.text(0, 1), "right");
    EXPECT_FALSE(param.setRaw(0, 0, {}));
}

TEST(CAudioParam, TellsItsListenersWithRangeAndSource)
{
    AudioParamWorld world;
    CAudioParam& param = world.bound("list");
    Listener listener;
    Listener other;
    listener.attach(&world.collector, CAudioParamCollector::listenerKey(param));
    other.attach(&world.collector, CAudioParamCollector::listenerKey(world.bound("one")));
    param.setElement(1, 3, 2.0, &world);
    EXPECT_EQ(listener.source, &world);
    // The gap in front of the element is part of the change.
    EXPECT_EQ(listener.lines, (std::vector<std::string>{"list 1:1+3"}));
    param.resetValues(1, -1);
    EXPECT_EQ(listener.lines.back(), "list 1:0+1 end");
    EXPECT_TRUE(other.lines.empty());
    listener.detach();
    param.setValue(0);
    EXPECT_EQ(listener.lines.size(), 2u);
}

TEST(CAudioParam, NumbersThatAreNotFiniteBecomeDefaults)
{
    AudioParamWorld world;
    CAudioParam& param = world.bound("list");
    const double nan = std::numeric_limits<double>::quiet_NaN();
    param.update(AudioParamRecord(param.info()->format, 0, 1, {nan, -nan, 99}).update);
    const CAudioParamGuard guard(world.collector);
    // Editors may go beyond the bounds; only the replaced values are held within them.
    EXPECT_EQ(numbers(param.editStorage(guard).cells(0)), (std::vector<double>{1, 2, 3, 99}));
}

TEST(CAudioParam, ResetReturnsToResetValues)
{
    AudioParamWorld world;
    CAudioParam& param = world.bound("list");
    const auto cells = [&](int group) {
        const CAudioParamGuard guard(world.collector);
        return numbers(param.editStorage(guard).cells(group));
    };
    for (int group = 0; group < 3; ++group)
        param.update(AudioParamRecord(param.info()->format, group, 0, {7, 7, 7, 7, 7}).update);
    param.resetValues(0, 1);
    EXPECT_EQ(cells(0), (std::vector<double>{7, 2, 7, 7, 7}));
    param.resetValues(1, 3);
    EXPECT_EQ(cells(1), (std::vector<double>{7, 7, 7, 1, 7}));
    param.resetValues(2, 4, CAudioParam::EResetFrom::firstElement);
    EXPECT_EQ(cells(2), (std::vector<double>{7, 7, 7, 7, 1}));
    param.resetValues(4, 2);
    EXPECT_EQ(cells(4), (std::vector<double>{1, 2, 3}));
    param.resetValues(kAudioParamTemplateGroup, -1);
    EXPECT_EQ(param.value(7, 1), 2.0) << "the default elements stay";
    param.resetValues(-1, -1);
    EXPECT_EQ(cells(0), (std::vector<double>{1, 2, 3}));
    EXPECT_EQ(cells(1), (std::vector<double>{4}));
    EXPECT_EQ(cells(2), (std::vector<double>{}));
    EXPECT_EQ(cells(4), (std::vector<double>{}));
}

TEST(CAudioParam, LoadPutsSavedValuesWhereTheyBelong)
{
    AudioParamWorld world;
    CAudioParam& param = world.bound("list");
    const auto blob = (Bytes() << "any.name" << 1 << 1 << 0 << 2 << 2 << 99.0 << -3.0 << 1 << 5.0).data;
    const auto cells = [&](int group) {
        const CAudioParamGuard guard(world.collector);
        return numbers(param.editStorage(guard).cells(group));
    };
    ASSERT_FALSE(param.load(blob, {.group = 3}));
    EXPECT_EQ(cells(3), (std::vector<double>{10, -3}));
    ASSERT_FALSE(param.load(blob, {.group = 3, .element = 4}));
    EXPECT_EQ(cells(3), (std::vector<double>{10, -3, 3, 1, 10}));
    ASSERT_FALSE(param.load(blob, {.group = 3, .element = 1, .isToEnd = true}));
    EXPECT_EQ(cells(3), (std::vector<double>{10, 10}));
    // The template grows by its next element only.
    ASSERT_FALSE(param.load(blob, {.group = kAudioParamTemplateGroup, .element = 5}));
    EXPECT_TRUE(world.module.hasLogged("Unexpected LoadElement 5 (expected 3)."));
    ASSERT_FALSE(param.load(blob, {.group = kAudioParamTemplateGroup, .element = 3}));
    EXPECT_EQ(param.value(6, 3), 10.0);

    world.collector.flushQueue();
    ASSERT_FALSE(param.load(blob, {}));
    world.collector.flushQueue();
    EXPECT_EQ(numbers(param.audioStorage().cells(0)), (std::vector<double>{10, -3}));
    EXPECT_EQ(numbers(param.audioStorage().cells(1)), (std::vector<double>{5}));
    EXPECT_EQ(param.audioStorage().elementCount(3), 0);
    EXPECT_EQ(bytesOf(param), (Bytes() << "def.list" << 1 << 1 << 0 << 2 << 2 << 10.0 << -3.0 << 1 << 5.0).data);

    ASSERT_FALSE(param.load(bytesOf(param, 1), {.isReset = true}));
    EXPECT_EQ(cells(0), (std::vector<double>{10, -3}));
    param.resetValues(-1, -1);
    EXPECT_EQ(cells(0), (std::vector<double>{5}));
    EXPECT_TRUE(bool(param.load(std::span(blob).first(blob.size() - 1), {})));
    EXPECT_EQ(cells(0), (std::vector<double>{5}));
}

TEST(CAudioParam, ReadersAreHitByTheirGroupsAndElements)
{
    AudioParamWorld world;
    CAudioParam& list = world.bound("list");
    CAudioParam& one = world.bound("one");
    const CAudioParamStorage* storage = nullptr;
    std::uint8_t dirty = 0;
    std::uint32_t mask = 99;
    const auto hits = [&](CAudioParam& param, int group, int element, const AudioParamRecord& record) {
        CAudioParamReader* const reader = param.attachReader(storage, &dirty, &mask, group, element);
        dirty = 0;
        mask = 0;
        param.update(record.update);
        world.collector.flushQueue();
        param.detachReader(reader);
        EXPECT_EQ(dirty != 0, mask != 0);
        return mask;
    };
    const CAudioParamFormat& format = list.info()->format;
    EXPECT_EQ(hits(list, 1, 0, {format, 1, 0, {1}}), 2u);
    EXPECT_EQ(hits(list, 1, 0, {format, 2, 0, {1}}), 0u);
    EXPECT_EQ(hits(list, -1, -1, {format, 2, 0, {1}}), 4u);
    EXPECT_EQ(hits(list, 1, 4, {format, 1, 0, {1, 2, 3, 4}}), 0u);
    EXPECT_EQ(hits(list, 1, 4, {format, 1, 0, {1}, true}), 2u);
    EXPECT_EQ(hits(list, 1, 2, {format, 1, 1, {1}, true}), 2u);
    EXPECT_EQ(hits(list, 1, 0, {format, 1, 1, {1}, true}), 0u);
    EXPECT_EQ(hits(list, 5, 9, {format, kAudioParamTemplateGroup, 0, {1}}), ~0u);
    EXPECT_EQ(hits(one, 3, 7, {one.info()->format, 0, 0, {1}}), 1u);

    // What a new reader starts with, and that changes join until it has read them.
    CAudioParamReader* const all = list.attachReader(storage, &dirty, &mask, -1, -1);
    EXPECT_EQ(mask, 7u);
    std::uint32_t otherMask = 0;
    CAudioParamReader* const third = list.attachReader(storage, &dirty, &otherMask, 2, 0);
    EXPECT_EQ(otherMask, 4u);
    list.detachReader(list.attachReader(storage, &dirty, &otherMask, 3, 0));
    EXPECT_EQ(otherMask, 0u);
    mask = 0;
    list.setElement(0, 0, 5);
    world.collector.flushQueue();
    list.setElement(2, 0, 5);
    world.collector.flushQueue();
    EXPECT_EQ(mask, 5u);
    EXPECT_EQ(storage, &list.audioStorage());
    list.detachReader(all);
    list.detachReader(third);
    mask = 0;
    list.setElement(0, 0, 6);
    world.collector.flushQueue();
    EXPECT_EQ(mask, 0u);
}

TEST(CAudioParam, AnImmediateChangeHasTheLastWord)
{
    AudioParamWorld world;
    CAudioParam& param = world.bound("one");
    param.setValue(0.25);
    param.setValue(0.75, nullptr, {.isImmediate = true});
    EXPECT_EQ(param.audioStorage().value(0, 0), 0.75);
    world.collector.flushQueue();
    EXPECT_EQ(param.audioStorage().value(0, 0), 0.75);
}

/// Whatever the order of changes and flushes, and however they merge, modules end up with what editors see.
TEST(CAudioParam, TheAudioSideArrivesAtTheEditedState)
{
    AudioParamWorld world;
    std::mt19937 random(4711);
    const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    CAudioParam* const params[] = {&world.bound("list"), &world.bound("pair"), &world.bound("text"),
                                   &world.bound("one")};
    for (int round = 0; round < 20000; ++round) {
        CAudioParam& param = *params[below(4)];
        if (below(30) == 0)
            world.env.setActive(below(3) == 0);
        CAudioParamData items;
        const auto value = [&](int) {
            return param.info()->format.hasItems() ? double(items.addText(CString("t") + std::to_string(round).c_str()))
                                                   : double(below(1000));
        };
        const bool isTemplate = below(60) == 0;
        const int count = below(4) + (isTemplate ? 1 : 0);
        std::vector<double> values;
        for (int i = 0; i < count * param.info()->format.elementSize; ++i)
            values.push_back(value(i));
        const AudioParamRecord kept(param.info()->format, isTemplate ? kAudioParamTemplateGroup : below(3),
                                    isTemplate ? 0 : below(9), values, below(6) == 0);
        CAudioParamUpdate update = kept.update;
        update.data = &items;
        if (below(8) == 0) {
            CAudioParamUpdateList list;
            EXPECT_TRUE(param.update(update, {.deferredList = &list}));
            world.collector.splice(list);
        } else {
            EXPECT_TRUE(param.update(update));
        }
        if (below(30) != 0)
            continue;
        world.collector.flushQueue();
        const CAudioParamGuard guard(world.collector);
        for (const CAudioParam* const each : params) {
            const CAudioParamStorage& edit = each->editStorage(guard);
            // Keys differ, so texts are compared by their bytes.
            ASSERT_EQ(bytesOf(each->audioStorage()), bytesOf(edit)) << round << " " << each->path().toUtf8();
            ASSERT_EQ(each->audioStorage().data().size(), edit.data().size()) << round;
        }
    }
}

} // namespace
} // namespace qrb
