// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CChunkId.h"
#include "Core/CInputZipStream.h"
#include "Core/CMemoryReader.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/COutputZipStream.h"
#include "Core/CString.h"
#include "Core/CWriteSeqBuffer.h"
#include "Core/LzfPacking.h"

#include <gtest/gtest.h>
#include <random>

namespace qrb {
namespace {

enum class EKind { zip, lzf };

constexpr std::uint32_t kId = chunkId("aprs");
constexpr std::size_t kHeaderSize[] = {12, 16};

CByteArray makeData(std::size_t size, std::uint32_t seed, unsigned alphabet)
{
    std::mt19937 random(seed);
    CByteArray data;
    data.resize(size);
    for (std::uint8_t& byte : data)
        byte = static_cast<std::uint8_t>(random() % alphabet);
    return data;
}

CByteArray pack(EKind kind, const CByteArray& data, std::uint32_t id = kId)
{
    CWriteSeqBuffer buffer;
    EXPECT_FALSE(kind == EKind::zip ? buffer.writeCompressedData(data.span(), id)
                                    : buffer.writeCompressedDataLZF(data.span(), id));
    CByteArray bytes;
    buffer.getContiguous(bytes);
    return bytes;
}

CErrorPtr unpack(EKind kind, CInputStream& stream, CByteArray& data, std::uint32_t id = kId)
{
    return kind == EKind::zip ? stream.readCompressedData(data, id) : stream.readCompressedDataLZF(data, id);
}

/// Unpacks through a stream without direct access and through one with it; both must agree.
CErrorPtr unpackBothWays(EKind kind, const CByteArray& bytes, CByteArray& data)
{
    CMemoryReaderStatic direct(bytes.span());
    CByteArray viaDirect;
    const CErrorPtr directError = unpack(kind, direct, viaDirect);
    CMemoryReader reader{CByteArray(bytes)};
    CErrorPtr error = unpack(kind, reader, data);
    EXPECT_EQ(static_cast<bool>(error), static_cast<bool>(directError));
    EXPECT_EQ(viaDirect, data);
    return error;
}

class StreamChunks : public testing::TestWithParam<EKind> {};

TEST_P(StreamChunks, DataComesBackWhateverItsSizeAndContent)
{
    for (const std::size_t size : {0u, 1u, 2u, 31u, 32u, 33u, 255u, 1000u, 40000u, 300000u})
        for (const unsigned alphabet : {1u, 3u, 256u}) {
            const CByteArray data = makeData(size, 7 + alphabet, alphabet);
            CByteArray back;
            ASSERT_FALSE(unpackBothWays(GetParam(), pack(GetParam(), data), back)) << size << " of " << alphabet;
            EXPECT_EQ(back, data) << size << " of " << alphabet;
        }
}

TEST_P(StreamChunks, EveryTruncationIsAnErrorAndLeavesNothing)
{
    const CByteArray whole = pack(GetParam(), makeData(700, 3, 5));
    for (std::size_t size = 0; size < whole.size(); ++size) {
        CByteArray back = makeData(9, 1, 256);
        EXPECT_TRUE(unpackBothWays(GetParam(), CByteArray(whole.span().first(size)), back)) << size;
        EXPECT_TRUE(back.empty()) << size;
    }
}

TEST_P(StreamChunks, NoDamagedByteIsReadAsGoodDataWhereACheckStands)
{
    CByteArray data = makeData(400, 3, 200); // varied, since the check is weak for few values
    data.appendAll(CByteArray(data.span().subspan(50, 300)).span());
    const CByteArray whole = pack(GetParam(), data);
    // LZF has no check over its data: there a change may pass, but never as a crash or a wrong size.
    const bool isChecked = GetParam() == EKind::zip;
    for (std::size_t i = 0; i < whole.size(); ++i)
        for (const int change : {0x01, 0x20, 0x80, 0xFF}) {
            CByteArray damaged(whole);
            damaged[i] = static_cast<std::uint8_t>(damaged[i] ^ change);
            CByteArray back;
            const CErrorPtr error = unpackBothWays(GetParam(), damaged, back);
            // A change that packs the same data in another way is none.
            const bool mayPass = i >= kHeaderSize[static_cast<int>(GetParam())] && (!isChecked || back == data);
            EXPECT_TRUE(error || mayPass) << "byte " << i << " by " << change;
            EXPECT_EQ(back.size(), error ? 0u : data.size());
        }
}

TEST_P(StreamChunks, AnotherIdIsToldInNumbers)
{
    const CByteArray bytes = pack(GetParam(), makeData(20, 1, 256));
    CMemoryReader reader{CByteArray(bytes)};
    CByteArray back;
    const CErrorPtr error = unpack(GetParam(), reader, back, chunkId("aPrs"));
    ASSERT_TRUE(error);
    EXPECT_EQ(error->line(0), "Invalid ID encountered when reading compressed data (expected 1936871521, read "
                              "1936879713).");
}

TEST_P(StreamChunks, ASizeBeyondTheLimitOrTheDataIsRefused)
{
    for (const std::uint32_t size : {60u << 20, 0xFFFFFFFFu}) {
        // Made by a chunk of our own with false sizes and a check that fits them.
        const std::uint32_t sizes[] = {size, 10};
        const std::size_t fieldBytes = GetParam() == EKind::zip ? 4 : 8;
        std::uint32_t a = 1;
        std::uint32_t b = 0;
        for (std::size_t i = 0; i < fieldBytes; ++i) {
            a = (a + reinterpret_cast<const std::uint8_t*>(sizes)[i]) % 65521;
            b = (b + a) % 65521;
        }
        CWriteSeqBuffer buffer;
        ASSERT_FALSE(buffer.writeUInt32(kId));
        ASSERT_FALSE(buffer.write(sizes, fieldBytes));
        ASSERT_FALSE(buffer.writeUInt32(b << 16 | a));
        ASSERT_FALSE(buffer.write("\x78\x9c\x03\x00\x00\x00\x00\x01\x00\x00", 10));
        CByteArray bytes;
        buffer.getContiguous(bytes);
        CByteArray back;
        EXPECT_TRUE(unpackBothWays(GetParam(), bytes, back));
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, StreamChunks, testing::Values(EKind::zip, EKind::lzf));

TEST(StreamChunks, HeaderCheckCoversTheSizeField)
{
    const CByteArray bytes = pack(EKind::zip, makeData(3719, 1, 256), chunkId("alst"));
    const std::uint8_t expected[] = {'a', 'l', 's', 't', 0x87, 0x0E, 0, 0, 0x96, 0x00, 0x4A, 0x02};
    EXPECT_TRUE(std::equal(std::begin(expected), std::end(expected), bytes.begin()));
}

TEST(StreamChunks, LZFIsReadAsItIsWrittenDownAndPacksWhatRepeats)
{
    const std::uint8_t packed[] = {2, 'a', 'b', 'c', 0x20, 2, 0xE0, 1, 0}; // abc, three again, ten times the last
    CByteArray data;
    data.resize(16);
    ASSERT_TRUE(unpackLZF(packed, data.span()));
    EXPECT_EQ(std::string(data.begin(), data.end()), "abcabccccccccccc");
    EXPECT_FALSE(unpackLZF(std::span(packed).first(8), data.span()));
    EXPECT_FALSE(unpackLZF(packed, data.span().first(15)));
    CByteArray again;
    packLZF(makeData(10000, 1, 1).span(), again);
    EXPECT_LT(again.size(), 130u);
}

TEST(StreamChunks, LZFLeavesTheStreamBehindTheChunk)
{
    for (const bool isDirect : {false, true}) {
        CByteArray bytes = pack(EKind::lzf, makeData(500, 2, 4));
        bytes.append(0x2A);
        CMemoryReaderStatic direct(bytes.span());
        CMemoryReader copied{CByteArray(bytes)};
        CInputStream& stream = isDirect ? static_cast<CInputStream&>(direct) : copied;
        CByteArray back;
        ASSERT_FALSE(stream.readCompressedDataLZF(back, kId));
        std::uint8_t behind = 0;
        ASSERT_FALSE(stream.readUInt8(behind));
        EXPECT_EQ(behind, 0x2A);
    }
}

TEST(StreamChunks, DataThatGoesOnBehindItsSizeIsAnError)
{
    CByteArray whole = pack(EKind::zip, makeData(500, 2, 4));
    const CByteArray shorter = pack(EKind::zip, makeData(499, 2, 4));
    std::copy_n(shorter.begin(), 12, whole.begin()); // says 499, holds 500
    CByteArray back;
    EXPECT_TRUE(unpackBothWays(EKind::zip, whole, back));
}

TEST(CZipStream, ClosedStreamsSayThatTheyHaveNoParent)
{
    CInputZipStream in;
    COutputZipStream out;
    std::uint8_t byte = 0;
    EXPECT_EQ(in.read(&byte, 1)->line(0), "Input stream not specified.");
    EXPECT_EQ(out.write(&byte, 1)->line(0), "Output stream not specified.");
}

} // namespace
} // namespace qrb
