// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CArray.h"

#include "Core/CString.h"

#include <gtest/gtest.h>
#include <memory>

namespace qrb {
namespace {

TEST(CArray, GrowsByItsTwoRules)
{
    CArray<int*> pointers;
    EXPECT_EQ(pointers.capacity(), 4U);
    for (int i = 0; i < 5; ++i) {
        pointers.append(nullptr);
    }
    EXPECT_EQ(pointers.capacity(), 9U);
    CArray<int> resized;
    resized.resize(11); // 4, 7, 11
    EXPECT_EQ(resized.capacity(), 11U);
    resized.resize(12);
    EXPECT_EQ(resized.capacity(), 17U);
    EXPECT_EQ(resized.back(), 0);
}

TEST(CArray, HoldsItemsThatOwnSomethingAndRefersToItselfSafely)
{
    CArray<CString, 1> texts;
    texts.append("a text that is too long to be held inline");
    for (int i = 0; i < 6; ++i) {
        texts.append(texts[0]); // grows while the argument lives in the old room
    }
    EXPECT_EQ(texts.back(), texts.front());
    texts.insertAt(0, "first");
    texts.insertAt(8, "last");
    texts.removeAt(1, 6);
    EXPECT_EQ(texts.size(), 3U);
    EXPECT_EQ(texts[0], "first");
    EXPECT_EQ(texts[2], "last");
    CArray<CString, 1> copy(texts);
    texts = CArray<CString, 1>{"one"}; // inline into heap
    EXPECT_EQ(copy.indexOf("last"), 2U);
    copy = texts;
    EXPECT_EQ(copy, texts);
    copy.resize(0);
    EXPECT_FALSE(copy.contains("one"));
}

TEST(CArray, MovesWhatCannotBeCopied)
{
    CArray<std::unique_ptr<int>, 2> items;
    for (int i = 0; i < 3; ++i) {
        items.append(std::make_unique<int>(i));
    }
    items.insertAt(0, std::make_unique<int>(9));
    items.removeAt(2);
    CArray<std::unique_ptr<int>, 2> heap(std::move(items));
    EXPECT_TRUE(items.empty()); // NOLINT: a moved array is empty and of use
    items.append(nullptr);
    CArray<std::unique_ptr<int>, 2> inlined(std::move(items));
    inlined = std::move(heap);
    EXPECT_EQ(inlined.size(), 3U);
    EXPECT_EQ(*inlined[0], 9);
    EXPECT_EQ(*inlined[2], 2);
}

} // namespace
} // namespace qrb
