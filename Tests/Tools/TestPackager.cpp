// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/DocCompiler/ToolFiles.h"
#include "Tools/Packager/CPackager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <productResources.h>

namespace {

namespace fs = std::filesystem;

/// A folder of files that goes when the test ends.
class CTestFolder {
public:
    CTestFolder() : m_path(fs::temp_directory_path() / fs::path("qrb-pack-test-XXXXXX"))
    {
        std::string name = m_path.string();
        m_path = mkdtemp(name.data());
    }
    ~CTestFolder() { fs::remove_all(m_path); }
    CTestFolder(const CTestFolder&) = delete;
    CTestFolder& operator=(const CTestFolder&) = delete;

    std::string write(const std::string& name, const std::string& content) const
    {
        fs::create_directories((m_path / name).parent_path());
        const std::string path = (m_path / name).string();
        EXPECT_EQ(qrbdoc::writeFileWhole(path, content), "");
        return path;
    }

private:
    fs::path m_path;
};

TEST(Packager, linkedTableHoldsTheCompiledDocumentInPlace)
{
    const auto rows = qrb::productResources();
    const auto row = std::find_if(rows.begin(), rows.end(), [](const qrb::CResourceRow& each) {
        return each.name == std::string("SharedData.xml");
    });
    ASSERT_NE(row, rows.end());
    std::uint32_t size = 0;
    std::memcpy(&size, row->data, 4);
    const std::span<const std::uint8_t> bytes(row->data + 4, size);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(bytes.data()) % 16, 0U);
    EXPECT_EQ(qrbdoc::print(bytes).error, "");
    EXPECT_EQ(rows.data()[rows.size()].data, nullptr);
}

TEST(Packager, documentsAndListsNameFilesRelativeToThemselves)
{
    const CTestFolder folder;
    folder.write("presets", "p");
    folder.write("doc/local", "l");
    folder.write("extra/b \"c\"", "b");
    const std::string document = folder.write("doc/a.xml", "<r><core:object name='appdata' file='../presets|P'/>"
                                                           "<core:object name='appdata' file='local'/></r>");
    const std::string list = folder.write("doc/list.txt", "# comment\n\nb \"c\"|x\"\\y\r\n");
    qrbpack::CPackager packager;
    packager.addFolder((fs::path(document).parent_path().parent_path() / "extra").string());
    packager.addDocument(document);
    packager.addList(list);
    ASSERT_TRUE(packager.errors().empty()) << packager.errors()[0].text();
    EXPECT_EQ(packager.dependencies().size(), 5U);
    const std::string text = packager.assembler("t");
    EXPECT_NE(text.find("/presets\"\n.Lend0:\n.Lname0:\n    .asciz \"P\""), std::string::npos) << text;
    EXPECT_NE(text.find(".asciz \"local\""), std::string::npos) << text;
    EXPECT_NE(text.find("b \\042c\\042\""), std::string::npos) << text;
    EXPECT_NE(text.find(".asciz \"x\\042\\134y\""), std::string::npos) << text;
}

TEST(Packager, missingAndRepeatedFilesAreToldWithTheirPlace)
{
    const CTestFolder folder;
    folder.write("there", "");
    const std::string document =
        folder.write("a.xml", "<r>\n <x name='appdata' file='gone|G'/><x name='appdata' file='there|T'/></r>");
    const std::string list = folder.write("list.txt", "there|T\n|bad\n");
    qrbpack::CPackager packager;
    packager.addDocument(document);
    packager.addDocument(folder.write("b.xml", "<r><x name='appdata'/></r>"));
    packager.addList(list);
    packager.addList("none.txt");
    std::vector<std::string> errors;
    for (const qrbdoc::Diagnostic& error : packager.errors())
        errors.push_back(error.text());
    ASSERT_EQ(errors.size(), 5U);
    EXPECT_EQ(errors[0], document + ":2:2: there is no file 'gone' for the resource 'G'");
    EXPECT_NE(errors[1].find("b.xml:1:4: attribute 'file' of an 'appdata' object"), std::string::npos) << errors[1];
    EXPECT_EQ(errors[2].find(list + ":1:1: resource 'T' is there already, from " + document + ":2:"), 0U) << errors[2];
    EXPECT_EQ(errors[3], list + ":2:1: '|bad' is not of the form 'source|resource'");
    EXPECT_EQ(errors[4], "none.txt: cannot read the file");
}

TEST(ToolFiles, dependencyRulesEscapeWhatMakeReads)
{
    EXPECT_EQ(qrbdoc::dependencyRule("a b", {"c#$d"}), "a\\ b: \\\n  c\\#$$d\n");
}

} // namespace
