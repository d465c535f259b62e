// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/CAutoResetEvent.h"
#include "Platform/CRecursiveLock.h"
#include "Platform/CSystemThread.h"

#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>
#include <pthread.h>
#include <string>

namespace qrb::platform {
namespace {

TEST(SystemThread, LockLetsItsOwnerInAgainAndKeepsOthersOut)
{
    CRecursiveLock lock(50);
    int shared = 0;
    const auto count = [&] {
        for (int i = 0; i < 20000; ++i) {
            const CScopedLock outer(lock);
            const CScopedLock inner(lock);
            ++shared;
        }
    };
    CSystemThread first;
    CSystemThread second;
    ASSERT_EQ(first.start("first", count, EThreadPriority::normal), 0);
    ASSERT_EQ(second.start("second", count, EThreadPriority::normal), 0);
    first.join();
    second.join();
    EXPECT_EQ(shared, 40000);

    const CScopedLock held(lock);
    bool entered = true;
    ASSERT_EQ(first.start(
                  "third", [&] { entered = lock.tryEnter(); }, EThreadPriority::normal),
              0);
    first.join();
    EXPECT_FALSE(entered);
    EXPECT_TRUE(lock.tryEnter());
    lock.leave();
}

TEST(SystemThread, EventLetsOneWaiterGoForEachSignal)
{
    CAutoResetEvent ping;
    CAutoResetEvent pong;
    int turns = 0; // handed from thread to thread by the events alone
    CSystemThread thread;
    const auto body = [&] {
        for (int i = 0; i < 1000; ++i) {
            ping.wait();
            ++turns;
            pong.signal();
        }
    };
    ASSERT_EQ(thread.start("pong", body, EThreadPriority::normal), 0);
    for (int i = 0; i < 1000; ++i) {
        ping.signal();
        ASSERT_TRUE(pong.waitFor(60.0));
        ASSERT_EQ(turns, i + 1);
    }
    pong.signal();
    pong.signal();
    EXPECT_TRUE(pong.waitFor(0.0));
    EXPECT_FALSE(pong.waitFor(0.0));
}

TEST(SystemThread, HasItsNameItsNumberAndNoSignals)
{
    CSystemThread thread;
    char name[32] = {};
    std::uint64_t id = 0;
    bool isBlocked = false;
    bool isFaultBlocked = true;
    const auto body = [&] {
        pthread_getname_np(pthread_self(), name, sizeof name);
        id = CSystemThread::currentId();
        sigset_t mask;
        pthread_sigmask(SIG_SETMASK, nullptr, &mask);
        isBlocked = sigismember(&mask, SIGINT) == 1;
        isFaultBlocked = sigismember(&mask, SIGSEGV) == 1;
    };
    // The priority is refused to most users; the thread runs all the same.
    ASSERT_EQ(thread.start("a-name-longer-than-fits", body, EThreadPriority::timeCritical), 0);
    EXPECT_EQ(thread.start("again", body, EThreadPriority::normal), EBUSY);
    thread.join();
    thread.join();
    EXPECT_EQ(std::string(name), "a-name-longer-t");
    EXPECT_NE(id, 0u);
    EXPECT_NE(id, CSystemThread::currentId());
    EXPECT_TRUE(isBlocked);
    EXPECT_FALSE(isFaultBlocked) << "a crash must reach the handlers of the host";
    ASSERT_EQ(thread.start(
                  "again", [] {}, EThreadPriority::normal),
              0);
}

} // namespace
} // namespace qrb::platform
