// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/StandardError.h"

#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace qrb::platform {
namespace {

TEST(StandardError, ReaderThatNeverReadsBlocksNobody)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const int saved = dup(STDERR_FILENO);
    dup2(ends[1], STDERR_FILENO);
    const std::string text = "start " + std::string(1 << 21, 'x'); // more than a pipe holds
    writeStandardError(text);
    writeStandardError("dropped");
    dup2(saved, STDERR_FILENO);
    close(saved);
    close(ends[1]);

    std::string got;
    char piece[4096];
    for (ssize_t count = 0; (count = read(ends[0], piece, sizeof(piece))) > 0;) {
        got.append(piece, static_cast<std::size_t>(count));
    }
    close(ends[0]);
    EXPECT_GT(got.size(), 1000U);
    EXPECT_EQ(got, text.substr(0, got.size()));
}

TEST(StandardError, ReaderThatHasGoneHarmsNobody)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    const int saved = dup(STDERR_FILENO);
    dup2(ends[1], STDERR_FILENO);
    close(ends[1]);
    writeStandardError("dropped"); // a signal would end the test program
    dup2(saved, STDERR_FILENO);
    close(saved);
}

} // namespace
} // namespace qrb::platform
