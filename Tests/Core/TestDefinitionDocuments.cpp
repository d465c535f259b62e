// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CApplication.h"
#include "Core/CObject.h"
#include "Core/CProcessState.h"
#include "Core/CResourceStore.h"
#include "Platform/CSystemThread.h"
#include "Tests/Support/CTestModule.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <random>

namespace qrb {

namespace {

const char* const kDocument = R"(<root base="b" big="{base}{base}">
    <template name="t" class="core:object" v="{base}"><template name="i" class="core:object" w="1"/><c name="c" x="{v}"/></template>
    <a name="x" n="0"><a name="y" n="{/^ n}" follow="{*/x n}"/></a><a name="x" n="1"/><content>text</content></root>)";

/// The tree as text: full names, tags, and the attributes that documents here use.
std::string describe(const CObject& object)
{
    std::string text = "[" + object.fullName().toUtf8() + " " + object.tag().toUtf8();
    for (const char* const name : {"base", "big", "v", "w", "n", "x", "value", "follow"})
        text += " " + object.getAttrString(name, "-").toUtf8();
    for (const CObject* const child : object.childs())
        text += describe(*child);
    return text + "]";
}

void instantiate(CObject& root)
{
    CObject* made = nullptr;
    CObject* inner = nullptr;
    if (CErrorPtr error = root.createChild(made, "t", "made", ERequireTemplate::no))
        return;
    if (CErrorPtr error = made->createChild(inner, "i", "inner", ERequireTemplate::no))
        return;
}

class CTempFile {
public:
    explicit CTempFile(const std::vector<std::uint8_t>& bytes)
        : m_path(std::filesystem::temp_directory_path() / ("qrb-document-" + std::to_string(std::random_device{}())))
    {
        std::ofstream(m_path, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    ~CTempFile() { std::filesystem::remove(m_path); }
    [[nodiscard]] CString name() const { return CString::fromUtf8(m_path.string()); }

private:
    std::filesystem::path m_path;
};

} // namespace

TEST(DefinitionDocuments, MemoryAndFileGiveTheSameTree)
{
    CTestModule module;
    const std::vector<std::uint8_t> bytes = compileDocument(kDocument);
    std::string error;
    CObject& fromMemory = *module.tryLoadRoot(bytes, error);
    CObject* fromFile = nullptr;
    {
        const CTempFile file(bytes);
        ASSERT_EQ(errorText(CApplication::initRootObject(fromFile, file.name())), "");
    }
    // The file and what it was read into are gone; the templates have what they need.
    instantiate(fromMemory);
    instantiate(*fromFile);
    EXPECT_EQ(describe(*fromFile), describe(fromMemory));
    EXPECT_NE(describe(fromMemory).find("[made core:object - - b - - - - -"), std::string::npos)
        << describe(fromMemory);
    EXPECT_NE(describe(fromMemory).find("[made.inner core:object - - - 1"), std::string::npos);
    fromFile->release();
}

TEST(DefinitionDocuments, DecodeTheirStrings)
{
    CTestModule module;
    CObject& root = module.loadRoot("<root a=\"gr\xC3\xB6\xC3\x9F"
                                    "er\" b=\"\xE2\x82\xAC\"/>");
    EXPECT_FALSE(root.getAttrString("a").isWide());
    EXPECT_EQ(root.getAttrString("a").at(2), 0xF6);
    EXPECT_EQ(root.getAttrString("b").at(0), 0x20AC);
}

TEST(DefinitionDocuments, ResourcesAreUsedInPlace)
{
    CTestModule module;
    static constexpr std::uint8_t kBlock[] = {3, 0, 0, 0, 'a', 'b', 'c'};
    static constexpr std::uint8_t kNothing[] = {0, 0, 0, 0};
    const CResourceRow rows[] = {{kBlock, "../x"}, {kNothing, "empty"}};
    CResourceStore& store = *processState().resources;
    store.addRows(rows);
    EXPECT_EQ(store.find("../x")->data(), kBlock + 4);
    EXPECT_EQ(store.find("../x")->size(), 3u);
    EXPECT_EQ(store.find("empty")->size(), 0u);
    EXPECT_FALSE(store.find("../X"));
    CObject* root = nullptr;
    EXPECT_NE(errorText(CApplication::initRootObject(root, "empty")), "");
    EXPECT_EQ(root, nullptr);
}

TEST(DefinitionDocuments, TruncatedOnesEndInAnError)
{
    CTestModule module;
    const std::vector<std::uint8_t> whole = compileDocument(kDocument);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        std::string error;
        // A copy of exactly this size, so that a read behind its end is seen by the sanitizers.
        EXPECT_EQ(
            module.tryLoadRoot(std::vector(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)), error),
            nullptr)
            << size;
        EXPECT_NE(error, "");
    }
}

TEST(DefinitionDocuments, DamagedOnesLoadOrFailButNeverMore)
{
    CTestModule module;
    const std::vector<std::uint8_t> whole = compileDocument(kDocument);
    std::mt19937 random(4711);
    const std::array<std::uint8_t, 5> favourites{0, 1, 0x7F, 0x80, 0xFF};
    int failed = 0;
    for (int round = 0; round < 4000; ++round) {
        std::vector<std::uint8_t> bytes = whole;
        for (std::uint32_t change = 0; change < 1 + random() % 4; ++change)
            bytes[random() % bytes.size()] =
                random() % 2 != 0 ? favourites[random() % favourites.size()] : static_cast<std::uint8_t>(random());
        std::string error;
        if (CObject* const root = module.tryLoadRoot(std::move(bytes), error)) {
            instantiate(*root);
            static_cast<void>(describe(*root));
            module.releaseRoot(*root);
        } else {
            ++failed;
        }
    }
    EXPECT_GT(failed, 400);
}

TEST(DefinitionDocuments, AmplifyingOnesAreRefused)
{
    CTestModule module;
    std::string error;
    // All strings at one offset: a small table that would decode to a large one.
    std::vector<std::uint8_t> table{0, 1, 0, 0, 0, 5, 0, 0};
    for (int i = 0; i < 256; ++i)
        table.insert(table.end(), {0, 4, 0, 0});
    table.resize(table.size() + 255, 'a');
    table.insert(table.end(), {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(module.tryLoadRoot(table, error), nullptr);
    EXPECT_NE(error.find("string table"), std::string::npos) << error;
    // Texts that double with each attribute.
    std::string xml = "<root a0=\"0123456789012345678901234567890123456789\"";
    for (int i = 1; i < 60; ++i)
        xml += " a" + std::to_string(i) + "=\"{a" + std::to_string(i - 1) + "}{a" + std::to_string(i - 1) + "}\"";
    EXPECT_EQ(module.tryLoadRoot(xml + "/>", error), nullptr);
    EXPECT_NE(error.find("does not end"), std::string::npos) << error;
    // Long texts that come to nothing, again and again.
    EXPECT_EQ(module.tryLoadRoot("<root><doc:repeat count=\"1000\"><doc:attr name=\"a$(i)\" value=\"{@" +
                                     std::string(40000, 'x') + "}\"/></doc:repeat></root>",
                                 error),
              nullptr);
    EXPECT_NE(error.find("damaged"), std::string::npos) << error;
    // Objects inside objects, deeper than any product's: kind, no attributes, one child of tag "a" and name "a".
    std::vector<std::uint8_t> deep{1, 0, 0, 0, 6, 0, 0, 0, 4, 0, 0, 0, 'a', 0, 0, 0, 0, 0};
    for (int i = 0; i < 20000; ++i)
        deep.insert(deep.end(), {0, 0, 0, 1, 0, 0, 0, 0, 0});
    EXPECT_EQ(module.tryLoadRoot(deep, error), nullptr);
    EXPECT_NE(error.find("too deep"), std::string::npos) << error;
}

TEST(DefinitionDocuments, ATemplateInATemplatesPlaceIsRefused)
{
    CTestModule module;
    std::vector<std::uint8_t> bytes =
        compileDocument(R"(<root><template name="t" class="template" a="" b=""/></root>)");
    // The payload's node becomes a stored template: u8 kind, two attributes of 4 bytes, two counts of 2.
    bytes[bytes.size() - 13] = 1;
    std::string error;
    CObject* const root = module.tryLoadRoot(bytes, error);
    ASSERT_NE(root, nullptr) << error;
    CObject* made = nullptr;
    EXPECT_NE(errorText(root->createChild(made, "t", "made", ERequireTemplate::yes)).find("damaged"),
              std::string::npos);
}

TEST(DefinitionDocuments, ThreadsBuildTreesFromOneDocument)
{
    CTestModule module(R"(<root rate="44100.5"/>)");
    module.addResource("Editor.xml", compileDocument(kDocument));
    std::array<platform::CSystemThread, 4> threads;
    std::array<std::string, 4> trees;
    for (std::size_t i = 0; i < threads.size(); ++i) {
        const auto build = [&tree = trees[i], &module] {
            for (int round = 0; round < 20; ++round) {
                CObject* root = nullptr;
                ASSERT_EQ(errorText(CApplication::initRootObject(root, "Editor.xml")), "");
                instantiate(*root);
                EXPECT_FALSE(root->setAttr("w", "{/shared:: rate}"));
                EXPECT_EQ(module.shared().getAttrDouble("rate"), 44100.5);
                tree = describe(*root);
                root->release();
            }
        };
        ASSERT_EQ(threads[i].start("builder", build, platform::EThreadPriority::normal), 0);
    }
    for (platform::CSystemThread& thread : threads)
        thread.join();
    EXPECT_NE(trees[0].find("made.inner"), std::string::npos);
    EXPECT_NE(trees[0].find("44100.5"), std::string::npos);
    for (const std::string& tree : trees)
        EXPECT_EQ(tree, trees[0]);
}

} // namespace qrb
