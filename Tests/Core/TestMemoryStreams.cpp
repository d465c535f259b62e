// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CMemoryReader.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/CString.h"
#include "Core/CWriteSeqBuffer.h"

#include <gtest/gtest.h>

namespace qrb {
namespace {

constexpr std::uint8_t kBytes[] = {1, 2, 3, 4, 5};

TEST(CMemoryReader, PlainReadingStopsAtTheEndAndTellsWhere)
{
    CMemoryReader reader{CByteArray(std::span<const std::uint8_t>(kBytes))};
    std::uint8_t read[8] = {};
    ASSERT_FALSE(reader.read(read, 3));
    EXPECT_EQ(read[2], 3);
    EXPECT_EQ(reader.read(read, 3)->line(0),
              "Premature end of memory resource while reading (pos 3, count 3, size 5).");
    EXPECT_EQ(reader.skip(~std::uint64_t{0})->line(0),
              "Premature end of memory resource while skipping (pos 3, count 18446744073709551615, size 5).");
    std::size_t count = 8;
    ASSERT_FALSE(reader.readAvailable(read, count));
    EXPECT_EQ(count, 2u);
    count = 8;
    ASSERT_FALSE(reader.readAvailable(read, count));
    EXPECT_EQ(count, 0u);
    EXPECT_TRUE(reader.setPosition(6));
    ASSERT_FALSE(reader.setPosition(5));
    std::int32_t value = 7;
    EXPECT_TRUE(reader.readInt32(value));
    EXPECT_EQ(value, 0);
    EXPECT_EQ(reader.getDirectData(), nullptr);
}

TEST(CMemoryReaderStatic, GivesItsRemainingBytesInPlace)
{
    CMemoryReaderStatic reader(kBytes);
    ASSERT_FALSE(reader.skip(2));
    EXPECT_EQ(reader.getDirectData(), kBytes + 2);
    EXPECT_EQ(reader.getDirectSize(), 3u);
    CMemoryReaderStatic empty({});
    EXPECT_NE(empty.getDirectData(), nullptr);
    EXPECT_EQ(empty.getDirectSize(), 0u);
}

TEST(CMemoryReader, SizesAbove2GBAreRefusedWhereOnly32BitsAreKept)
{
    // Only the span's size is looked at.
    CMemoryReaderStatic reader({kBytes, std::size_t{0x80000000}});
    std::int32_t value = 0;
    EXPECT_EQ(reader.getSizeInt(value)->line(0), "The size of the stream is above allowed 2 GB.");
    ASSERT_FALSE(reader.setPosition(0x7FFFFFFF));
    ASSERT_FALSE(reader.getPositionInt32(value));
    EXPECT_EQ(value, 0x7FFFFFFF);
}

TEST(CWriteSeqBuffer, BlocksFillOneAfterTheOther)
{
    CByteArray data;
    for (int i = 0; i < 300; ++i)
        data.append(static_cast<std::uint8_t>(i));
    CWriteSeqBuffer buffer(256);
    ASSERT_FALSE(buffer.write(data.data(), data.size()));
    EXPECT_EQ(buffer.getSize(), 300u);
    EXPECT_EQ(buffer.getBlockCount(), 2u);
    ASSERT_FALSE(buffer.write(data.data(), 212)); // fills the second block
    EXPECT_EQ(buffer.getBlockCount(), 2u);
    CWriteSeqBuffer other(7);
    ASSERT_FALSE(buffer.writeTo(other));
    CByteArray one;
    CByteArray two;
    buffer.getContiguous(one);
    other.getContiguous(two);
    EXPECT_EQ(one, two);
    ASSERT_EQ(one.size(), 512u);
    EXPECT_TRUE(std::equal(data.begin(), data.end(), one.begin()));
    EXPECT_TRUE(std::equal(data.begin(), data.begin() + 212, one.begin() + 300));
}

TEST(CWriteSeqBuffer, NumbersAreLittleEndian)
{
    CWriteSeqBuffer buffer;
    ASSERT_FALSE(buffer.writeInt32(-2));
    ASSERT_FALSE(buffer.writeDouble(1.0));
    ASSERT_FALSE(buffer.writeUInt8(9));
    CByteArray bytes;
    buffer.getContiguous(bytes);
    const std::uint8_t expected[] = {0xFE, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F, 9};
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), std::begin(expected), std::end(expected)));
    CMemoryReader reader(std::move(bytes));
    std::int32_t integer = 0;
    double number = 0.0;
    ASSERT_FALSE(reader.readInt32(integer));
    ASSERT_FALSE(reader.readDouble(number));
    EXPECT_EQ(integer, -2);
    EXPECT_EQ(number, 1.0);
}

} // namespace
} // namespace qrb
