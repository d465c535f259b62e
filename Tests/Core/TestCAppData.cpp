// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CAppData.h"

#include "Core/CAppDataListener.h"
#include "Core/CChunkId.h"
#include "Core/CMemoryReader.h"
#include "Core/CProcessState.h"
#include "Core/CWriteSeqBuffer.h"
#include "Platform/CSystemThread.h"
#include "Tests/Support/CTempFolders.h"
#include "Tests/Support/CTestModule.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace qrb {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kString = chunkId("dstr");
constexpr std::uint32_t kList = chunkId("alst");
constexpr const char* kLocal = "Quorbel/Audio Plug-Ins/Thumpcraft/";

/// The file content of a block that holds one string.
std::vector<std::uint8_t> stringFile(const char* text)
{
    CWriteSeqBuffer content;
    CByteArray bytes;
    EXPECT_FALSE(content.writeString(text));
    content.getContiguous(bytes);
    CWriteSeqBuffer file;
    EXPECT_FALSE(file.writeCompressedData(bytes.span(), kString));
    file.getContiguous(bytes);
    return {bytes.begin(), bytes.end()};
}

class AppData : public testing::Test {
protected:
    AppData() { enter(); }

    /// A new process, as far as the data can tell.
    void enter()
    {
        m_module.reset();
        m_module = std::make_unique<CTestModule>("<root/>", CTestModuleOptions{{}, &m_folders});
    }
    [[nodiscard]] static CAppData& local() { return *processState().appDataLocal; }
    [[nodiscard]] static CAppData& global() { return *processState().appDataGlobal; }
    void put(const fs::path& file, const std::vector<std::uint8_t>& bytes) { m_folders.write(file, bytes); }
    [[nodiscard]] fs::path userFile(const char* name) const { return m_folders.user() / kLocal / name; }

    CTempFolders m_folders;
    std::unique_ptr<CTestModule> m_module;
};

TEST_F(AppData, TakesTheFirstSourceThatCanBeDecoded)
{
    const fs::path sources[] = {m_folders.user() / "Quorbel/size", m_folders.machine() / "Quorbel/size",
                                m_folders.user() / "Quorbel/Audio Plug-Ins/size", m_folders.module() / "size"};
    const char* const values[] = {"user", "machine", "older", "module"};
    const auto value = [] {
        CByteArray bytes = global().readData("size", kString, true);
        CString text;
        return bytes.empty() || CMemoryReader(std::move(bytes)).readString(text) ? std::string("-") : text.toUtf8();
    };
    EXPECT_EQ(value(), "-");
    m_module->addResource("AppDataGlobal_size", stringFile("resource"));
    EXPECT_EQ(value(), "resource");
    for (std::size_t i = std::size(sources); i-- > 0;) {
        put(sources[i], stringFile(values[i]));
        EXPECT_EQ(value(), values[i]);
    }
    for (std::size_t i = 0; i < std::size(sources); ++i) {
        put(sources[i], i % 2 == 0 ? std::vector<std::uint8_t>{'x', 'y'} : std::vector<std::uint8_t>{});
        EXPECT_EQ(value(), i < 3 ? values[i + 1] : "resource") << "a damaged source must not hide the next one";
    }
    EXPECT_EQ(m_module->logLines().empty(), false);
    for (const fs::path& source : sources)
        fs::remove(source);
    EXPECT_EQ(value(), "resource");
}

TEST_F(AppData, ModuleFolderHasASubfolderForTheProductAndTheCurrentFolderIsNoSource)
{
    put(m_folders.module() / "Thumpcraft/size", stringFile("product"));
    EXPECT_EQ(local().getString("size"), "product");
    const fs::path before = fs::current_path();
    fs::current_path(m_folders.root());
    put(m_folders.root() / "AppDataLocal_other", stringFile("wrong"));
    EXPECT_EQ(local().getString("other", "none"), "none");
    fs::current_path(before);
}

TEST_F(AppData, WrittenBlocksAreFoundAgainByTheNextProcess)
{
    const CString text = CString::fromUtf8("\xC3\xA4 \xE2\x82\xAC {a}");
    local().setString("ui-scale", text, nullptr);
    EXPECT_TRUE(fs::exists(userFile("ui-scale")));
    EXPECT_FALSE(fs::exists(userFile(".ui-scale")));
    enter();
    EXPECT_EQ(local().getString("ui-scale"), text);
    EXPECT_EQ(CAppData::findScope("group")->getString("ui-scale", "none"), "none");
    EXPECT_EQ(CAppData::findScope("elsewhere"), nullptr);
}

TEST_F(AppData, MemoryServesReadsUntilAReloadIsForced)
{
    put(userFile("a"), stringFile("one"));
    EXPECT_EQ(local().getString("a"), "one");
    put(userFile("a"), stringFile("two"));
    EXPECT_EQ(local().getString("a"), "one");
    EXPECT_TRUE(local().readData("a", kList).empty()) << "another kind of block than the one in memory";
    EXPECT_TRUE(local().readData("a", kList, true).empty());
    EXPECT_EQ(local().getString("a"), "one") << "failed reads leave memory alone";
    EXPECT_FALSE(local().readData("a", kString, true).empty());
    EXPECT_EQ(local().getString("a"), "two");
    fs::remove(userFile("a"));
    EXPECT_FALSE(local().readData("a", kString, true).empty()) << "with the sources gone, memory counts";
}

TEST_F(AppData, CrashInTheMiddleOfAWriteLeavesTheOldBlock)
{
    const std::vector<std::uint8_t> whole = stringFile("old");
    for (std::size_t length = 0; length < whole.size(); ++length) {
        put(userFile("a"), {whole.begin(), whole.begin() + static_cast<long>(length)});
        put(userFile(".a"), whole);
        EXPECT_FALSE(local().readData("a", kString, true).empty()) << length;
        EXPECT_EQ(local().getString("a"), "old") << length;
    }
    // A crash while the copy was made: the file itself is whole.
    put(userFile("a"), stringFile("whole"));
    put(userFile(".a"), {whole.begin(), whole.begin() + 5});
    enter();
    EXPECT_EQ(local().getString("a"), "whole");
    // The next write tidies up.
    put(userFile("a"), {'x'});
    local().setString("a", "new", nullptr);
    EXPECT_FALSE(fs::exists(userFile(".a")));
    enter();
    EXPECT_EQ(local().getString("a"), "new");
}

TEST_F(AppData, FailedWriteKeepsTheOldFileAndTellsNobody)
{
    local().setString("a", "old", nullptr);
    fs::create_directories(userFile(".a")); // in the way of the copy
    const std::vector<std::uint8_t> before = m_folders.read(userFile("a"));
    class CListener final : public CUpdateListener {
    public:
        ~CListener() override { detach(); }
        void onUpdate(const CUpdateInfo&) override { ++m_calls; }
        int m_calls = 0;
    } listener;
    listener.attach(&local(), CString("a"));
    local().setString("a", "new", nullptr);
    EXPECT_EQ(m_folders.read(userFile("a")), before);
    EXPECT_EQ(listener.m_calls, 0);
    EXPECT_EQ(local().getString("a"), "new") << "this process goes on with it";
    fs::remove(userFile(".a"));
    local().setString("a", "newer", nullptr);
    EXPECT_EQ(listener.m_calls, 1);
}

TEST_F(AppData, UnusableUserFolderBlocksWritesAlone)
{
    put(m_folders.user() / "Quorbel", {'x'}); // a file where the folder belongs
    m_module->addResource("AppDataLocal_a", stringFile("resource"));
    put(m_folders.machine() / kLocal / "b", stringFile("machine"));
    local().setString("c", "new", nullptr);
    EXPECT_EQ(local().getString("a"), "resource");
    EXPECT_EQ(local().getString("b"), "machine");
    EXPECT_EQ(local().getString("c", "none"), "none");

    m_folders.hasUser = false;
    enter();
    m_module->addResource("AppDataGlobal_a", stringFile("global"));
    global().setString("a", "new", nullptr);
    EXPECT_EQ(global().getString("a"), "global");
}

TEST_F(AppData, ListenersOfTheNameHearOfAWriteWithNoLockHeld)
{
    struct COwner {
        CByteArray bytes;
        const void* sender = nullptr;
        int calls = 0;
    };
    class CListener final : public CAppDataListener<COwner> {
    public:
        using CAppDataListener::CAppDataListener;
        ~CListener() override { detach(); }
        void onUpdate(const CUpdateInfo& info) override
        {
            // From another thread: with the lock of the data held by the writer this would never end.
            platform::CSystemThread reader;
            const auto read = [this] { owner().bytes = local().readData("a", kString); };
            ASSERT_EQ(reader.start("reader", read, platform::EThreadPriority::normal), 0);
            reader.join();
            owner().sender = info.sender;
            ++owner().calls;
        }
    };
    COwner owner;
    CListener listener(owner);
    listener.attach(&local(), CString("a"));
    local().setString("b", "other", nullptr);
    EXPECT_EQ(owner.calls, 0);
    local().setString("a", "text", &owner);
    EXPECT_EQ(owner.calls, 1);
    EXPECT_EQ(owner.sender, &owner);
    EXPECT_FALSE(owner.bytes.empty());
}

} // namespace
} // namespace qrb
