// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CMemoryReader.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/CPathText.h"
#include "Core/CQrbMemAllocator.h"
#include "Core/CString.h"
#include "Core/CWriteSeqBuffer.h"

#include <gtest/gtest.h>
#include <string>

namespace qrb {
namespace {

CByteArray written(const CString& text)
{
    CWriteSeqBuffer buffer;
    EXPECT_FALSE(buffer.writeString(text));
    CByteArray bytes;
    buffer.getContiguous(bytes);
    return bytes;
}

CString readBack(const std::string& payload, std::uint32_t count)
{
    CWriteSeqBuffer buffer;
    EXPECT_FALSE(buffer.writeUInt32(count));
    EXPECT_FALSE(buffer.write(payload.data(), payload.size()));
    CByteArray bytes;
    buffer.getContiguous(bytes);
    CMemoryReader reader(std::move(bytes));
    CString text;
    EXPECT_FALSE(reader.readString(text));
    return text;
}

CString readBack(const std::string& payload)
{
    return readBack(payload, static_cast<std::uint32_t>(payload.size()));
}

TEST(StreamStrings, EveryCharacterComesBackAsItWas)
{
    CString all;
    for (char32_t character = 1; character < 0x110000; character += character < 0x900 ? 1 : 331)
        if (character < 0xD800 || character > 0xDFFF)
            all.appendCodePoint(character);
    for (std::size_t begin = 0; begin < all.length(); begin += 4000) {
        CByteArray bytes = written(all.substr(begin, 4000));
        CMemoryReader reader(std::move(bytes));
        CString text;
        ASSERT_FALSE(reader.readString(text));
        // A pair that the cut has torn apart leaves no trace.
        EXPECT_EQ(text.toUtf8(), all.substr(begin, 4000).toUtf8());
    }
}

TEST(StreamStrings, LayoutIsCountAndUtf8)
{
    const CByteArray bytes = written(CString("a\xE9"));
    const std::uint8_t expected[] = {3, 0, 0, 0, 'a', 0xC3, 0xA9};
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), std::begin(expected), std::end(expected)));
}

TEST(StreamStrings, SurrogatesGoAsOneSequenceOrNotAtAll)
{
    const CByteArray pair = written(CString::fromUtf16(u"\xD83D\xDE00"));
    ASSERT_EQ(pair.size(), 8u);
    EXPECT_EQ(pair[4], 0xF0);
    EXPECT_EQ(written(CString::fromUtf16(u"a\xD800")).size(), 5u);
    EXPECT_EQ(written(CString::fromUtf16(u"\xDE00\xD83D")).size(), 4u);
}

TEST(StreamStrings, WritingCutsBehindTheLastWholeCharacter)
{
    std::string ascii(61440, 'x');
    EXPECT_EQ(written(CString(ascii)).size(), 4u + 61440u);
    EXPECT_EQ(written(CString(ascii + "y")).size(), 4u + 61440u);
    ascii.back() = '\xE9'; // two bytes at 61439
    EXPECT_EQ(written(CString(ascii)).size(), 4u + 61439u);
}

TEST(StreamStrings, TheLongestTextReadsAndOneByteMoreFails)
{
    EXPECT_EQ(readBack(std::string(61440, 'x')).length(), 61440u);
    CByteArray bytes;
    bytes.resize(4 + 61441);
    bytes[0] = 0x01;
    bytes[1] = 0xF0;
    CMemoryReader reader(std::move(bytes));
    CString text("old");
    const CErrorPtr error = reader.readString(text);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->line(0), "String length 61441 too long in readString().");
    EXPECT_TRUE(text.empty());
}

TEST(StreamStrings, DamagedTextGivesWhatIsLeftOfIt)
{
    EXPECT_EQ(readBack("a\x80\xFFz"), "az"); // bytes that start nothing
    EXPECT_EQ(readBack("ab\xE2\x82"), "ab"); // cut short
    EXPECT_EQ(readBack(std::string("ab\0cd", 5)), "ab");
    EXPECT_EQ(readBack("a\xC3z"), "az");         // badly continued
    EXPECT_EQ(readBack("a\xED\xA0\x80z"), "az"); // a surrogate as a sequence of its own
    EXPECT_EQ(readBack("a\xC0\x80z"), "az");     // NUL in disguise
    EXPECT_EQ(readBack(""), "");
}

TEST(StreamStrings, AFalseCountFailsWithoutTheMemoryForIt)
{
    const std::uint8_t bytes[] = {0x00, 0xF0, 0, 0, 'a', 'b'};
    CMemoryReaderStatic reader(bytes);
    CString text;
    const CErrorPtr error = reader.readString(text);
    ASSERT_TRUE(error);
    EXPECT_TRUE(text.empty());
}

TEST(CPathText, BytesOfAPathSurviveAsText)
{
    const std::string paths[] = {"/tmp/a", "/tmp/\xC3\xA9\xF0\x9F\x98\x80", "/tmp/\xFF\x80x\xC3", "\xED\xB2\x80"};
    for (const std::string& path : paths)
        EXPECT_EQ(pathToBytes(pathFromBytes(path)), path);
    EXPECT_EQ(pathFromBytes("/\xC3\xA9"), "/\xE9");
    EXPECT_EQ(pathToBytes(CString("/\xE9")), "/\xC3\xA9");
}

} // namespace
} // namespace qrb
