// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CLog.h"

#include "Core/CArray.h"

#include <clocale>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace qrb {
namespace {

TEST(CLog, SinkGetsFormattedLinesWithTheTag)
{
    logLine("dropped, since there is no log");
    CLog log;
    CArray<CString> lines;
    log.setSink([&](const CString& line) { lines.append(line); });
    logFormat("%s: %.1f ms, %5d of %llu (%zu) %-3c| %#x %*d %%", "load", 2.25, -7, 18446744073709551615ULL, sizeof(int),
              'c', 255U, 3, 5);
    log.setTag("tag");
    logLine(CString::fromUtf8("\xE2\x82\xAC"));
    log.setTag("");
    logFormat("%s", std::string(3000, 'x').c_str());
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0], "load: 2.2 ms,    -7 of 18446744073709551615 (4) c  | 0xff   5 %");
    EXPECT_EQ(lines[1].toUtf8(), "\xE2\x82\xAC // tag");
    EXPECT_EQ(lines[2].length(), 1023U);
}

TEST(CLog, FileIsBegunAnewByTheFirstLineOnly)
{
    const std::string name = testing::TempDir() + "thumpcraft-test.log";
    std::ofstream(name) << "of an earlier run";
    CLog log;
    log.setFileName(CString::fromUtf8(name));
    logLine("one");
    logLine("two");
    std::ifstream file(name, std::ios::binary);
    const std::string content((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    EXPECT_EQ(content, "one\r\ntwo\r\n");
    std::remove(name.c_str());
}

} // namespace
} // namespace qrb
