// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/CAutoResetEvent.h"
#include "Platform/CMessageLoop.h"
#include "Platform/CSystemThread.h"

#include <gtest/gtest.h>
#include <optional>
#include <poll.h>
#include <string>
#include <vector>

namespace qrb::platform {
namespace {

/// A loop whose time stands still until the test moves it.
struct CManualLoop {
    double now = 100.0;
    CMessageLoop loop{[this] { return now; }};

    std::size_t at(double seconds)
    {
        now = 100.0 + seconds;
        return loop.pump();
    }
};

bool isReadable(int descriptor)
{
    pollfd entry{descriptor, POLLIN, 0};
    return ::poll(&entry, 1, 0) == 1;
}

TEST(MessageLoop, RunsMessagesInOrderAndThoseTheyPostInALaterTurn)
{
    CMessageLoop loop;
    std::string trace;
    EXPECT_FALSE(isReadable(loop.fileDescriptor()));
    loop.post([&] {
        trace += 'a';
        loop.post([&] { trace += 'c'; });
    });
    loop.post([&] { trace += 'b'; });
    EXPECT_TRUE(isReadable(loop.fileDescriptor()));
    EXPECT_EQ(loop.pump(), 2u);
    EXPECT_EQ(trace, "ab");
    EXPECT_TRUE(isReadable(loop.fileDescriptor())) << "a host would never pump for the message posted last";
    EXPECT_EQ(loop.pump(), 1u);
    EXPECT_EQ(trace, "abc");
    EXPECT_FALSE(isReadable(loop.fileDescriptor())) << "a host would spin";
}

TEST(MessageLoop, NestedTurnKeepsTheOrderOfMessages)
{
    CMessageLoop loop;
    std::string trace;
    loop.post([&] {
        trace += '(';
        loop.pump();
        trace += ')';
    });
    loop.post([&] { trace += 'x'; });
    loop.pump();
    EXPECT_EQ(trace, "(x)");
}

TEST(MessageLoop, TimersKeepTheirBeatAndDropMissedCalls)
{
    CManualLoop manual;
    int slow = 0;
    int fast = 0;
    ASSERT_NE(manual.loop.startTimer(1.0, [&] { ++slow; }), 0u);
    ASSERT_NE(manual.loop.startTimer(0.25, [&] { ++fast; }), 0u);
    EXPECT_EQ(manual.at(0.125), 0u);
    EXPECT_EQ(manual.at(0.25), 1u);
    EXPECT_EQ(manual.at(0.375), 0u);
    EXPECT_EQ(manual.at(1.125), 2u);
    EXPECT_EQ(manual.at(1.25), 1u) << "the beat is counted from the start, not from the late call";
    EXPECT_EQ(slow, 1);
    EXPECT_EQ(fast, 3);
    EXPECT_EQ(manual.loop.startTimer(0.0, [] {}), 0u);
}

TEST(MessageLoop, TimerCallbacksMayStopAndStartTimers)
{
    CManualLoop manual;
    CMessageLoop::TimerId self = 0;
    CMessageLoop::TimerId other = 0;
    std::string trace;
    // The text is owned by the callback and read after the stop: it has to outlive it.
    self = manual.loop.startTimer(1.0, [&, text = std::string(40, 's')] {
        manual.loop.stopTimer(self);
        manual.loop.stopTimer(other);
        EXPECT_NE(manual.loop.startTimer(1.0, [&] { trace += 'n'; }), 0u);
        trace += text.back();
    });
    other = manual.loop.startTimer(1.0, [&] { trace += 'o'; });
    EXPECT_EQ(manual.at(1.0), 1u);
    EXPECT_EQ(manual.at(2.0), 1u);
    EXPECT_EQ(trace, "sn");
}

TEST(MessageLoop, RunWakesForMessagesOfOtherThreadsAndForTimers)
{
    CMessageLoop loop;
    int messages = 0;
    int ticks = 0;
    CMessageLoop::TimerId timer = 0;
    timer = loop.startTimer(0.001, [&] {
        loop.stopTimer(timer);
        ++ticks;
        if (messages == 1000)
            loop.quit();
    });
    CSystemThread poster;
    const auto post = [&] {
        for (int i = 0; i < 1000; ++i) {
            loop.post([&] {
                if (++messages == 1000 && ticks == 1)
                    loop.quit();
            });
        }
    };
    ASSERT_EQ(poster.start("poster", post, EThreadPriority::normal), 0);
    loop.run();
    EXPECT_EQ(messages, 1000);
    EXPECT_EQ(ticks, 1);
    loop.quit();
    loop.run(); // the quit that came before is not lost
}

TEST(MessageLoop, CurrentIsTheOnePumpedThenTheOneChosenThenTheYoungestOfTheThread)
{
    EXPECT_EQ(CMessageLoop::current(), nullptr);
    auto older = std::make_optional<CMessageLoop>();
    CMessageLoop younger;
    EXPECT_EQ(CMessageLoop::current(), &younger);
    CMessageLoop* pumped = nullptr;
    older->post([&] { pumped = CMessageLoop::current(); });
    {
        const CMessageLoop::CScope scope(younger);
        older->pump();
        EXPECT_EQ(pumped, &*older);
        EXPECT_EQ(CMessageLoop::current(), &younger);
    }
    CMessageLoop* ofOtherThread = &younger;
    CSystemThread thread;
    ASSERT_EQ(thread.start(
                  "", [&] { ofOtherThread = CMessageLoop::current(); }, EThreadPriority::normal),
              0);
    thread.join();
    EXPECT_EQ(ofOtherThread, nullptr);

    int ticks = 0;
    const auto timer = older->startTimer(0.5, [&] { ++ticks; });
    CMessageLoop::stopTimerOfThread(timer);
    older.reset();
    CMessageLoop::stopTimerOfThread(timer);
    EXPECT_EQ(CMessageLoop::current(), &younger);
}

} // namespace
} // namespace qrb::platform
