// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CFileReader.h"
#include "Core/CFileWriter.h"
#include "Core/CPathText.h"
#include "Core/CResourceReader.h"
#include "Core/CSystem.h"
#include "Core/CTextTable.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

namespace qrb {
namespace {

class FileStreams : public testing::Test {
protected:
    void SetUp() override { std::filesystem::create_directories(m_folder); }
    void TearDown() override { std::filesystem::remove_all(m_folder); }

    CString path(const char* name) const { return pathFromBytes((m_folder / name).string()); }
    void writeFile(const char* name, std::string_view content, bool append = false)
    {
        CFileWriter writer;
        ASSERT_FALSE(writer.open(path(name), append));
        ASSERT_FALSE(writer.write(content.data(), content.size()));
        ASSERT_FALSE(writer.close());
    }
    std::string readFile(const char* name)
    {
        CFileReader reader;
        EXPECT_FALSE(reader.open(path(name)));
        std::string content(1000, ' ');
        std::size_t count = content.size();
        EXPECT_FALSE(reader.readAvailable(content.data(), count));
        content.resize(count);
        return content;
    }

    std::filesystem::path m_folder =
        std::filesystem::temp_directory_path() / ("qrb-file-streams-" + std::to_string(::getpid()));
};

TEST_F(FileStreams, WritersTruncateOrAppend)
{
    writeFile("f\xFF", "one, two");
    writeFile("f\xFF", "three");
    writeFile("f\xFF", "+", true);
    EXPECT_EQ(readFile("f\xFF"), "three+");

    CFileWriter writer;
    ASSERT_FALSE(writer.open(path("f\xFF"), true));
    std::uint64_t position = 0;
    ASSERT_FALSE(writer.getPosition(position));
    EXPECT_EQ(position, 6u);
    ASSERT_FALSE(writer.setPosition(1));
    ASSERT_FALSE(writer.write("H", 1));
    ASSERT_FALSE(writer.close());
    EXPECT_EQ(readFile("f\xFF"), "tHree+");
    EXPECT_TRUE(CSystem::fileExists(path("f\xFF")));
}

TEST_F(FileStreams, ReadersMoveAndTellTheEnd)
{
    writeFile("f", "0123456789");
    CFileReader reader;
    ASSERT_FALSE(reader.open(path("f")));
    std::uint64_t size = 0;
    ASSERT_FALSE(reader.getSize(size));
    EXPECT_EQ(size, 10u);
    char read[8] = {};
    ASSERT_FALSE(reader.skip(4));
    ASSERT_FALSE(reader.read(read, 2));
    EXPECT_EQ(std::string_view(read, 2), "45");
    EXPECT_TRUE(reader.skip(5));
    ASSERT_FALSE(reader.setPosition(7));
    EXPECT_EQ(reader.read(read, 4)->line(0),
              CString("Unable to read from file '") + path("f") + "' (required 4 bytes, read 3 bytes).");
    CByteArray bytes;
    ASSERT_FALSE(reader.setPosition(0));
    EXPECT_TRUE(reader.readBytes(bytes, std::uint64_t{1} << 60));
}

TEST_F(FileStreams, WhatCannotBeOpenedIsNamedWithTheSystemsNumber)
{
    CFileReader reader;
    EXPECT_EQ(reader.open(path("none"))->line(0),
              CString("Unable to open file '") + path("none") + "' for reading (error 2).");
    EXPECT_FALSE(reader.isOpen());
    CFileWriter writer;
    EXPECT_EQ(writer.open(path("none/x"), true)->line(0),
              CString("Unable to open file '") + path("none/x") + "' for appending (error 2).");
    CResourceReader resource;
    EXPECT_EQ(resource.open(path("none"))->line(0),
              CString("Unable to open file '") + path("none") + "' for reading (error 2).");
    EXPECT_TRUE(resource.skip(1));
}

TEST_F(FileStreams, AReaderForWritingCreatesAMissingFileAndKeepsAnOldOne)
{
    CFileReader reader;
    ASSERT_FALSE(reader.open(path("new"), true));
    std::uint64_t size = 1;
    ASSERT_FALSE(reader.getSize(size));
    EXPECT_EQ(size, 0u);
    writeFile("old", "kept");
    ASSERT_FALSE(reader.open(path("old"), true));
    ASSERT_FALSE(reader.getSize(size));
    EXPECT_EQ(size, 4u);
}

TEST_F(FileStreams, TablesComeBackFromAFileAsTheyWereWritten)
{
    CTextTable table;
    table.addRow({CString("a,b"), CString("say \"hi\";"), CString("#"), CString()});
    table.addRow({CString::fromUtf8("\xCE\xA9\xF0\x9F\x98\x80"), CString(" x ")});
    ASSERT_FALSE(table.writeFile(path("t")));
    EXPECT_EQ(readFile("t"), "\"a,b\",\"say \"\"hi\"\";\",\"#\",\r\n\xCE\xA9\xF0\x9F\x98\x80, x \r\n");
    CTextTable back;
    ASSERT_FALSE(back.readFile(path("t")));
    EXPECT_EQ(back.rows(), table.rows());
    EXPECT_TRUE(back.readFile(path("none")));
    EXPECT_EQ(back.rows(), table.rows());
}

} // namespace
} // namespace qrb
