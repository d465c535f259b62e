// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CTextTable.h"

#include "Core/CLineReaderUTF8.h"
#include "Core/CMemoryReaderStatic.h"

#include <gtest/gtest.h>
#include <string>

namespace qrb {
namespace {

std::string lines(const std::string& text)
{
    CMemoryReaderStatic stream({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    CLineReaderUTF8 reader(stream);
    std::string joined;
    for (;;) {
        CString line;
        bool hasLine = false;
        EXPECT_FALSE(reader.readLine(line, hasLine));
        if (!hasLine)
            return joined;
        joined += "<" + line.toUtf8() + ">";
    }
}

TEST(CLineReaderUTF8, LinesEndAtLineFeedsAndAtTheEnd)
{
    EXPECT_EQ(lines(""), "");
    EXPECT_EQ(lines("a\r\n\nb\rc"), "<a><><bc>");
    EXPECT_EQ(lines("a\n"), "<a>");
    EXPECT_EQ(lines("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xFF!"), "<\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80!>");
    EXPECT_EQ(lines("x\xE2\x82\ny\xC3"), "<x><y>"); // a line feed is never part of a damaged character
}

TEST(CLineReaderUTF8, CharactersAndLinesCrossTheBufferUnharmed)
{
    std::string text;
    std::string expected;
    for (std::size_t length = 0; length < 400; ++length) {
        std::string line;
        for (std::size_t i = 0; i < length; ++i)
            line += i % 3 == 0 ? "\xE2\x82\xAC" : "b";
        text += line + "\n";
        expected += "<" + line + ">";
    }
    EXPECT_EQ(lines(text), expected);
}

std::string parsed(const char* line)
{
    CTextTable::CRow fields;
    if (!CTextTable::parseRow(CString::fromUtf8(line), fields))
        return "no row";
    std::string joined;
    for (const CString& field : fields)
        joined += "[" + field.toUtf8() + "]";
    return joined;
}

TEST(CTextTable, FieldsArePartedQuotedAndCommented)
{
    EXPECT_EQ(parsed(""), "no row");
    EXPECT_EQ(parsed("# all of it"), "no row");
    EXPECT_EQ(parsed("a,b;c"), "[a][b][c]");
    EXPECT_EQ(parsed(",;"), "[][][]");
    EXPECT_EQ(parsed("a, b # rest, of it"), "[a][ b ]");
    EXPECT_EQ(parsed("\"a,b;#\",c"), "[a,b;#][c]");
    EXPECT_EQ(parsed("\"say \"\"hi\"\"\""), "[say \"hi\"]");
    EXPECT_EQ(parsed("x\"y,\"z"), "[xy,z]");
    EXPECT_EQ(parsed("\"open, to the end"), "[open, to the end]");
    EXPECT_EQ(parsed("\"\"\"\""), "[\"]");
    EXPECT_EQ(parsed("\"\""), "[]");
}

} // namespace
} // namespace qrb
