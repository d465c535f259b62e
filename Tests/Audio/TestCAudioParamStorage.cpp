// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamStorage.h"
#include "Audio/CAudioParamUpdateHolder.h"
#include "Core/CMemoryReaderStatic.h"
#include "Tests/Audio/AudioParamWorld.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace qrb {
namespace {

const CAudioParamFormat kNumber{};

CAudioParamStorage withTemplate(std::vector<double> values, const CAudioParamFormat& format = kNumber)
{
    CAudioParamStorage storage;
    EXPECT_TRUE(storage.apply(AudioParamRecord(format, kAudioParamTemplateGroup, 0, std::move(values)).update));
    return storage;
}

bool apply(CAudioParamStorage& storage, std::int32_t group, std::int32_t first, std::vector<double> values,
           bool isToEnd = false)
{
    return storage.apply(AudioParamRecord(storage.format(), group, first, std::move(values), isToEnd).update);
}

TEST(CAudioParamStorage, GrowsGroupsAndFillsGapsWithDefaults)
{
    CAudioParamStorage storage = withTemplate({1, 2});
    EXPECT_TRUE(apply(storage, 1, 0, {7}));
    EXPECT_TRUE(apply(storage, 5, 3, {9}));
    EXPECT_EQ(storage.groupCount(), 6);
    EXPECT_EQ(storage.elementCount(3), 0);
    // Beyond the table of defaults its first element stands for all.
    EXPECT_EQ(numbers(storage.cells(5)), (std::vector<double>{1, 2, 1, 9}));
    EXPECT_TRUE(apply(storage, 5, 1, {8}, true));
    EXPECT_EQ(numbers(storage.cells(5)), (std::vector<double>{1, 8}));
    EXPECT_TRUE(apply(storage, 5, 0, {}, true));
    EXPECT_EQ(storage.elementCount(5), 0);
    // A new template leaves elements that exist as they are, outside of its range.
    EXPECT_TRUE(apply(storage, 0, 0, {3, 4, 5}));
    EXPECT_TRUE(apply(storage, kAudioParamTemplateGroup, 0, {6}));
    EXPECT_EQ(numbers(storage.cells(0)), (std::vector<double>{6, 4, 5}));
    EXPECT_EQ(storage.value(2, 7), 6.0);
}

TEST(CAudioParamStorage, DropsWhatDoesNotFit)
{
    CAudioParamStorage storage;
    EXPECT_FALSE(apply(storage, 0, 0, {1}));
    EXPECT_EQ(storage.value(0, 0, 0, 0.25), 0.25);
    storage = withTemplate({1});
    for (const auto& [group, first] : {std::pair{-1, 0}, {32, 0}, {0, -1}, {0, 4096}, {0, 2147483647}})
        EXPECT_FALSE(apply(storage, group, first, {5})) << group << " " << first;
    CAudioParamFormat other;
    other.isSingleGroup = true;
    EXPECT_FALSE(storage.apply(AudioParamRecord(other, 0, 0, {5}).update));
    EXPECT_EQ(numbers(storage.cells(0)), (std::vector<double>{1}));
}

TEST(CAudioParamStorage, SingleGroupAndElementStandForAll)
{
    CAudioParamFormat single;
    single.isSingleGroup = true;
    single.isSingleElement = true;
    const CAudioParamStorage storage = withTemplate({0.5}, single);
    EXPECT_EQ(storage.value(7, 9), 0.5);
    EXPECT_EQ(storage.elementCount(7), 1);
    CAudioParamFormat wide;
    wide.elementSize = 2;
    CAudioParamStorage pairs = withTemplate({1, 2, 3, 4}, wide);
    EXPECT_EQ(pairs.value(0, 1, 1), 4.0);
    EXPECT_EQ(pairs.value(0, 5, 1), 2.0);
    EXPECT_EQ(pairs.value(0, 1, 2, -1.0), -1.0);
}

TEST(CAudioParamStorage, BytesAreThoseOfTheFormat)
{
    CAudioParamFormat wide;
    wide.elementSize = 2;
    CAudioParamStorage storage = withTemplate({1, 2}, wide);
    ASSERT_TRUE(apply(storage, 1, 0, {3, 4, 5, 6}));
    EXPECT_EQ(bytesOf(storage), (Bytes() << 1 << 2 << 0 << 2 << 1 << 1.0 << 2.0 << 2 << 3.0 << 4.0 << 5.0 << 6.0).data);
    EXPECT_EQ(bytesOf(storage, 1), (Bytes() << 1 << 2 << 0 << 1 << 2 << 3.0 << 4.0 << 5.0 << 6.0).data);
    EXPECT_EQ(bytesOf(storage, 4), (Bytes() << 1 << 2 << 0 << 1 << 0).data);

    AudioParamWorld world;
    CAudioParamStorage text = world.info("text").defaults;
    const auto expected =
        (Bytes() << 1 << 1 << 1 << 1 << 3 << 1 << 1 << "L" << 2 << 1 << "R" << 3 << 1 << "IN3" << 3 << 1 << 2 << 3)
            .data;
    EXPECT_EQ(bytesOf(text), expected);
    // The keys of a storage that was loaded and changed are others; the bytes start at 1 again.
    CMemoryReaderStatic in(expected);
    ASSERT_EQ(errorText(text.load(in)), "");
    EXPECT_EQ(texts(text, 0), "L|R|IN3|");
    EXPECT_EQ(bytesOf(text), expected);
    EXPECT_EQ(text.value(0, 9), text.defaultCells()[0]);
    EXPECT_EQ(text.text(0, 9), "L");
}

TEST(CAudioParamStorage, DamagedBytesLeaveTheOldState)
{
    AudioParamWorld world;
    CAudioParamStorage text = world.info("text").defaults;
    const auto before = bytesOf(text);
    const std::pair<Bytes, const char*> cases[] = {
        {Bytes() << 2, "Unsupported data set version 2."},
        {Bytes() << 1 << 2 << 0, "Unsupported storage format (esize=2, dtype=0; should be: esize=1, dtype=1)."},
        {Bytes() << 1 << 1 << 1 << 33, "Invalid group count 33."},
        {Bytes() << 1 << 1 << 1 << 1 << 0 << 4097, "Invalid element count 4097."},
        {Bytes() << 1 << 1 << 1 << 1 << 1 << 1 << 0, "Invalid data item type 0."},
        {Bytes() << 1 << 1 << 1 << 1 << -1, "Invalid data item count -1."},
        {Bytes() << 1 << 1 << 1 << 1 << 131073, "Invalid data item count 131073."},
        {Bytes() << 1 << 1 << 1 << 1 << 2147483647, ""},
        {Bytes() << 1 << 1 << 1 << 1 << 1 << 1 << 2 << 2147483647, ""},
        {Bytes() << 1 << 1 << 1 << 1 << 1 << 1 << 2 << -1, "Invalid data length -1."},
    };
    for (const auto& [bytes, message] : cases) {
        CMemoryReaderStatic in(bytes.data);
        const std::string error = errorText(text.load(in));
        EXPECT_FALSE(error.empty());
        EXPECT_EQ(error.find(message), 0u) << error;
        EXPECT_EQ(bytesOf(text), before);
    }
    // One key in two cells, a key of no item, one of another type, and the largest key: each cell gets an item of its
    // own, and only the first of those with one key what was read, so that bytes do not multiply.
    Bytes odd;
    odd << 1 << 1 << 1 << 1 << 2 << 2147483647 << 1 << "A" << 5 << 2 << 1;
    odd.data.push_back(9);
    odd << 4 << 2147483647 << 2147483647 << 77 << 5;
    CMemoryReaderStatic in(odd.data);
    ASSERT_EQ(errorText(text.load(in)), "");
    EXPECT_EQ(texts(text, 0), "A||||");
    CAudioParamData items;
    const double key = items.addText("B");
    CAudioParamUpdate update = AudioParamRecord(text.format(), 0, 0, {key}).update;
    update.values = &key;
    update.data = &items;
    ASSERT_TRUE(text.apply(update));
    EXPECT_EQ(texts(text, 0), "B||||");
}

TEST(CAudioParamStorage, ClampHoldsNumbersWithinBoundsOfEitherOrder)
{
    AudioParamWorld world;
    CAudioParamStorage pairs = world.info("pair").defaults;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    ASSERT_TRUE(apply(pairs, 0, 0, {-5, 99, nan, infinity, -infinity, nan}));
    pairs.clamp(world.info("pair"));
    EXPECT_EQ(numbers(pairs.cells(0)), (std::vector<double>{0, 10, 3, 4, 1, 2}));
}

TEST(CAudioParamUpdate, BytesComeBackAsTheSameRecord)
{
    AudioParamWorld world;
    const CAudioParamUpdate update = world.info("text").defaults.wholeGroup(0, 3);
    const auto bytes = bytesOf(update);
    CAudioParamUpdateHolder holder;
    CAudioParamUpdate read;
    CMemoryReaderStatic in(bytes);
    ASSERT_EQ(errorText(read.load(in, holder)), "");
    EXPECT_EQ(read.group, 3);
    EXPECT_TRUE(read.isToEnd);
    EXPECT_EQ(bytesOf(read), bytes);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        CMemoryReaderStatic cut(std::span<const std::uint8_t>(bytes).first(size));
        EXPECT_TRUE(bool(read.load(cut, holder))) << size;
    }
    const auto head = (Bytes() << 3 << 0 << 2 << 0 << 2 << 0 << 1 << 0 << 1.5 << 2.5 << 3.5 << 4.5).data;
    CMemoryReaderStatic numbersIn(head);
    ASSERT_EQ(errorText(read.load(numbersIn, holder)), "");
    EXPECT_EQ(numbers(read.cells()), (std::vector<double>{1.5, 2.5, 3.5, 4.5}));
    const auto huge = (Bytes() << 3 << 0 << 4096 << 0 << 2147483647 << 0 << 1 << 0).data;
    CMemoryReaderStatic hugeIn(huge);
    EXPECT_TRUE(bool(read.load(hugeIn, holder)));
    const auto none = (Bytes() << 3 << 4 << 0 << 1 << 2 << 0 << 1 << 0).data;
    CMemoryReaderStatic noneIn(none);
    ASSERT_EQ(errorText(read.load(noneIn, holder)), "");
    EXPECT_EQ(read.values, nullptr);
}

} // namespace
} // namespace qrb
