// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Support/CTempFolders.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace qrb {

namespace fs = std::filesystem;

CTempFolders::CTempFolders()
{
    std::string pattern = testing::TempDir() + "thumpcraft-XXXXXX";
    m_root = ::mkdtemp(pattern.data());
    for (const fs::path& folder : {user(), machine(), module()})
        fs::create_directory(folder);
}

CTempFolders::~CTempFolders()
{
    std::error_code ignored;
    fs::remove_all(m_root, ignored);
}

void CTempFolders::write(const fs::path& file, const std::vector<std::uint8_t>& bytes)
{
    fs::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    EXPECT_TRUE(stream.good()) << file;
}

std::vector<std::uint8_t> CTempFolders::read(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

} // namespace qrb
