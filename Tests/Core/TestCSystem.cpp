// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CSystem.h"

#include <gtest/gtest.h>
#include <random>

namespace qrb {
namespace {

bool slowMatch(const char* text, const char* pattern)
{
    if (*pattern == 0) {
        return *text == 0;
    }
    if (*pattern == '*') {
        return slowMatch(text, pattern + 1) || (*text != 0 && slowMatch(text + 1, pattern));
    }
    return *text != 0 && (*pattern == '?' || *pattern == *text) && slowMatch(text + 1, pattern + 1);
}

TEST(CSystem, WildcardsAnswerLikeTheRecursiveDefinition)
{
    std::mt19937 random(1);
    const auto pick = [&](const char* from, std::size_t count, std::size_t maxLength) {
        std::string text(random() % (maxLength + 1), ' ');
        for (char& c : text) {
            c = from[random() % count];
        }
        return text;
    };
    for (int i = 0; i < 20000; ++i) {
        const std::string text = pick("ab", 2, 8);
        const std::string pattern = pick("ab*?*", 5, 6);
        EXPECT_EQ(CSystem::wildcardMatch(text.c_str(), pattern.c_str()), slowMatch(text.c_str(), pattern.c_str()))
            << text << " against " << pattern;
    }
    EXPECT_FALSE(CSystem::wildcardMatch("A", "a"));
    EXPECT_FALSE(CSystem::wildcardMatch(std::string_view(std::string(20000, 'a')), "*a*a*a*a*a*a*a*a*a*a*b"));
}

TEST(CSystem, KnowsTheFolderOfTheCode)
{
    const CString folder = CSystem::getModuleFolder();
    EXPECT_TRUE(folder.startsWith("/"));
    EXPECT_FALSE(folder.endsWith("/"));
    EXPECT_FALSE(CSystem::fileExists(folder));
    EXPECT_FALSE(CSystem::fileExists(folder + "/no such file"));
}

} // namespace
} // namespace qrb
