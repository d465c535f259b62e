// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/CSystemFile.h"
#include "Platform/Files.h"
#include "Platform/Folders.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace qrb::platform {
namespace {

/// A fresh folder, and an environment that is put back.
class Files : public testing::Test {
protected:
    Files()
    {
        std::string pattern = testing::TempDir() + "thumpcraft-files-XXXXXX";
        m_folder = ::mkdtemp(pattern.data());
    }
    ~Files() override
    {
        std::filesystem::remove_all(m_folder);
        for (const auto& [name, value] : m_before)
            value.empty() ? ::unsetenv(name.c_str()) : ::setenv(name.c_str(), value.c_str(), 1);
    }
    void setVariable(const char* name, const std::string& value)
    {
        const char* before = std::getenv(name);
        m_before.emplace_back(name, before == nullptr ? "" : before);
        ::setenv(name, value.c_str(), 1);
    }

    std::string m_folder;

private:
    std::vector<std::pair<std::string, std::string>> m_before;
};

TEST_F(Files, WritesReadsSeeksAndReplaces)
{
    const std::string path = m_folder + "/block";
    CSystemFile file;
    ASSERT_EQ(file.open(path, EFileMode::rewrite), 0);
    ASSERT_EQ(file.write("0123456789", 10), 0);
    ASSERT_EQ(file.open(path, EFileMode::rewrite), 0);
    ASSERT_EQ(file.write("abcdef", 6), 0);
    ASSERT_EQ(file.close(), 0);
    EXPECT_TRUE(fileExists(path));

    ASSERT_EQ(renameFile(path, m_folder + "/other"), 0);
    EXPECT_FALSE(fileExists(path));
    ASSERT_EQ(file.open(m_folder + "/other", EFileMode::read), 0);
    std::uint64_t size = 0;
    ASSERT_EQ(file.size(size), 0);
    EXPECT_EQ(size, 6u);
    ASSERT_EQ(file.seek(4), 0);
    char text[8] = {};
    std::size_t count = 0;
    ASSERT_EQ(file.read(text, sizeof text, count), 0);
    EXPECT_EQ(std::string(text, count), "ef");
    CSystemFile moved = std::move(file);
    EXPECT_TRUE(moved.isOpen());
    EXPECT_EQ(removeFile(m_folder + "/other"), 0);
    EXPECT_EQ(removeFile(m_folder + "/other"), ENOENT);
}

TEST_F(Files, RefusesToReadWhatIsNoRegularFile)
{
    CSystemFile file;
    EXPECT_EQ(file.open(m_folder, EFileMode::read), EISDIR);
    EXPECT_EQ(file.open(m_folder + "/missing", EFileMode::read), ENOENT);
    ASSERT_EQ(::mkfifo((m_folder + "/pipe").c_str(), 0600), 0);
    EXPECT_EQ(file.open(m_folder + "/pipe", EFileMode::read), EINVAL);
    EXPECT_FALSE(file.isOpen());
    EXPECT_FALSE(fileExists(m_folder));
    EXPECT_TRUE(directoryExists(m_folder));
}

TEST_F(Files, FullDiskIsReported)
{
    CSystemFile file;
    if (file.open("/dev/full", EFileMode::rewrite) != 0)
        GTEST_SKIP() << "no such device here";
    EXPECT_EQ(file.write("x", 1), ENOSPC);
}

TEST_F(Files, UserFolderIsCreatedAndMachineFolderIsNot)
{
    CSystemFolders folders;
    setVariable("XDG_CONFIG_HOME", m_folder + "/a/b//");
    EXPECT_EQ(folders.userDataFolder(), m_folder + "/a/b");
    EXPECT_TRUE(directoryExists(m_folder + "/a/b"));
    setVariable("XDG_CONFIG_HOME", "relative");
    setVariable("HOME", m_folder);
    EXPECT_EQ(folders.userDataFolder(), m_folder + "/.config");
    EXPECT_TRUE(directoryExists(m_folder + "/.config"));
    CSystemFile file;
    ASSERT_EQ(file.open(m_folder + "/file", EFileMode::rewrite), 0);
    setVariable("XDG_CONFIG_HOME", m_folder + "/file/below");
    EXPECT_EQ(folders.userDataFolder(), "");

    setVariable("XDG_CONFIG_DIRS", ":odd:" + m_folder + "/machine:/other");
    EXPECT_EQ(folders.machineDataFolder(), m_folder + "/machine");
    EXPECT_FALSE(directoryExists(m_folder + "/machine"));
    setVariable("XDG_CONFIG_DIRS", "");
    EXPECT_EQ(folders.machineDataFolder(), "/etc/xdg");
}

TEST_F(Files, ModulePathIsTheFolderOfTheProgramThatHoldsTheCode)
{
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
    EXPECT_EQ(CSystemFolders().modulePath(), program.parent_path().string());
}

} // namespace
} // namespace qrb::platform
