// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CResourceReader.h"

#include "Tests/Support/CTempFolders.h"
#include "Tests/Support/CTestModule.h"

#include <gtest/gtest.h>

namespace qrb {
namespace {

TEST(CResourceReader, AResourceIsReadInPlaceAndWinsOverAFileOfItsName)
{
    CTestModule module;
    CTempFolders folders;
    const std::string name = (folders.root() / "block").string();
    CTempFolders::write(name, {9, 9});
    CResourceReader reader;
    ASSERT_FALSE(reader.open(CString::fromUtf8(name)));
    EXPECT_EQ(reader.getDirectData(), nullptr);
    std::uint64_t size = 0;
    ASSERT_FALSE(reader.getSize(size));
    EXPECT_EQ(size, 2u);

    module.addResource(CString::fromUtf8(name), {1, 2, 3});
    ASSERT_FALSE(reader.open(CString::fromUtf8(name)));
    ASSERT_FALSE(reader.skip(1));
    ASSERT_NE(reader.getDirectData(), nullptr);
    EXPECT_EQ(reader.getDirectSize(), 2u);
    EXPECT_EQ(reader.getDirectData()[0], 2);
    EXPECT_EQ(reader.skip(3)->lineCount(), 3u); // message, the reader's line and the one of the reader it holds
    reader.close();
    EXPECT_TRUE(reader.skip(0));
}

TEST(CResourceReader, AResourceOfNoBytesIsAnEmptyStream)
{
    CTestModule module;
    module.addResource("nothing", {});
    CResourceReader reader;
    ASSERT_FALSE(reader.open("nothing"));
    std::uint8_t byte = 0;
    std::size_t count = 1;
    ASSERT_FALSE(reader.readAvailable(&byte, count));
    EXPECT_EQ(count, 0u);
    EXPECT_NE(reader.getDirectData(), nullptr);
    EXPECT_EQ(reader.getDirectSize(), 0u);
}

} // namespace
} // namespace qrb
