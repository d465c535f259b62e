// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CString.h"

#include "Core/CQrbStdAllocator.h"
#include "Core/CTextSplit.h"

#include <gtest/gtest.h>

namespace qrb {
namespace {

CString wideText(const char* narrow)
{
    CString text(narrow);
    text.widen();
    return text;
}

TEST(CString, InlineRoomEndsAt26NarrowAnd12WideCharacters)
{
    CString narrow(std::string_view("abcdefghijklmnopqrstuvwxyz"));
    EXPECT_TRUE(narrow.isInline());
    narrow.append(u'!');
    EXPECT_FALSE(narrow.isInline());
    EXPECT_EQ(narrow.capacityBytes(), 28U + 8U);
    EXPECT_EQ(narrow, "abcdefghijklmnopqrstuvwxyz!");

    CString wide = wideText("abcdefghijkl");
    EXPECT_TRUE(wide.isInline());
    wide.append(u'm');
    EXPECT_FALSE(wide.isInline());
    EXPECT_EQ(wide.capacityBytes(), 28U + 16U);
    EXPECT_EQ(wide, "abcdefghijklm");
}

TEST(CString, TurnsWideOnDemandAndNarrowInPlace)
{
    for (const char* start : {"", "short", "exactly 13 ch", "long enough to live on the heap from the start"}) {
        CString text(start);
        text.append(0x0141).append(0xFF);
        EXPECT_TRUE(text.isWide());
        EXPECT_EQ(text.length(), CString(start).length() + 2);
        EXPECT_TRUE(text.startsWith(start));
        EXPECT_EQ(text.wideData()[text.length()], 0);
        text.narrow();
        EXPECT_EQ(text, CString(start) + "\x41\xFF");
        EXPECT_EQ(text.narrowData()[text.length()], 0);
    }
}

TEST(CString, WideAndNarrowOfEqualCharactersAreTheSameText)
{
    const CString narrow("na\xEFve");
    const CString wide = wideText("na\xEFve");
    EXPECT_TRUE(wide.isWide());
    EXPECT_EQ(narrow, wide);
    EXPECT_EQ(wide, "na\xEFve");
    EXPECT_EQ(narrow.hash(), wide.hash());
    EXPECT_EQ(narrow <=> wide, std::strong_ordering::equal);
    EXPECT_LT(wideText("ab"), CString("abc"));
    EXPECT_LT(CString("ab"), wideText("b"));
    EXPECT_LT(CString("z"), CString("\xE9")); // by value, not by signed byte
    EXPECT_LT(CString("\xFF"), CString::fromUtf16(u"\u0100"));

    CMap<CString, int> map;
    map[wide] = 3;
    EXPECT_EQ(map.find("na\xEFve")->second, 3);
    EXPECT_EQ(map.count(narrow), 1U);
}

TEST(CString, AppendsOfEitherFormAndOfItself)
{
    CString text("0123456789");
    text += text;
    text += text;
    EXPECT_EQ(text, "0123456789012345678901234567890123456789");
    text += CString::fromUtf16(u"\u20AC");
    text += "\xE9";
    text += CString("x");
    EXPECT_EQ(text.length(), 43U);
    EXPECT_EQ(text.at(40), 0x20AC);
    EXPECT_EQ(text.at(41), 0xE9);
    text += text;
    EXPECT_EQ(text.at(83), 0x20AC);

    CString moved(std::move(text));
    EXPECT_EQ(moved.length(), 86U);
    CString copy;
    copy = moved;
    moved = CString("short");
    EXPECT_EQ(copy.length(), 86U);
    EXPECT_EQ(moved, "short");
    copy.clear();
    EXPECT_FALSE(copy.isWide());
    EXPECT_EQ(copy, "");
}

TEST(CString, Utf8DecodesEncodesAndSkipsRubbish)
{
    const std::string all = "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\xA5\x81.";
    const CString text = CString::fromUtf8(all);
    EXPECT_EQ(text, CString::fromUtf16(u"A\u00E9\u20AC\U0001F941."));
    EXPECT_EQ(text.length(), 6U); // the drum is a surrogate pair
    EXPECT_EQ(text.toUtf8(), all);
    EXPECT_FALSE(CString::fromUtf8("\xC3\xBF").isWide());

    // Lone continuation, byte never used, sequence cut by a character, overlong slash, too large, cut by the end.
    for (const char* bad : {"a\x80z", "a\xFFz", "a\xE2\x82z", "a\xC0\xAFz", "a\xF7\xBF\xBF\xBFz", "az\xF0\x9F"}) {
        EXPECT_EQ(CString::fromUtf8(bad), "az") << bad;
    }
    CString lone("a");
    lone.append(0xD800).append(u'b').append(0xDC00);
    EXPECT_EQ(lone.toUtf8(), "ab");
    EXPECT_EQ(CString().appendCodePoint(0x110000).length(), 0U);
}

TEST(CString, FindsCutsAndTrims)
{
    const CString text = CString::fromUtf8(" \t/one/two/one\xE2\x82\xAC\r\n");
    EXPECT_EQ(text.find(u'/'), 2U);
    EXPECT_EQ(text.rfind(u'/'), 10U);
    EXPECT_EQ(text.find("one", 4), 11U);
    EXPECT_EQ(text.find("one!"), CString::npos);
    EXPECT_EQ(text.find("", 99), CString::npos);
    EXPECT_EQ(text.trimmed(), CString::fromUtf8("/one/two/one\xE2\x82\xAC"));
    EXPECT_TRUE(text.trimmed().endsWith(CString::fromUtf16(u"one\u20AC")));
    EXPECT_FALSE(CString("one").endsWith("none"));
    EXPECT_EQ(text.substr(3, 3), "one");
    EXPECT_FALSE(text.substr(3, 3).isWide());
    EXPECT_EQ(text.substr(100), "");
    EXPECT_EQ(CString(" \t").trimmed(), "");
    EXPECT_EQ(CString("\xC9tude").compareNoCase(wideText("\xE9TUDE")), 0);
    EXPECT_LT(CString("ab").compareNoCase("ABC"), 0);
}

TEST(CTextSplit, DropsOrKeepsEmptyPieces)
{
    EXPECT_EQ(split(" a  b ", u' '), (CArray<CString>{"a", "b"}));
    EXPECT_EQ(split(";a;;b;", u';', EEmpty::keep), (CArray<CString>{"", "a", "", "b", ""}));
    EXPECT_EQ(split("", u';').size(), 0U);
    EXPECT_EQ(split("", u';', EEmpty::keep).size(), 1U);
}

} // namespace
} // namespace qrb
