// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/COwnedUpdateListener.h"
#include "Core/CUpdateNotifier.h"
#include "Platform/CRecursiveLock.h"
#include "Platform/CSystemThread.h"
#include "Tests/Support/CTestModule.h"

#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <random>
#include <thread>
#include <vector>

namespace qrb {
namespace {

class CRecorder final : public CUpdateListener {
public:
    ~CRecorder() override { detach(); }
    void onUpdate(const CUpdateInfo& info) override { m_infos.push_back(info); }
    [[nodiscard]] std::size_t count() const { return m_infos.size(); }
    [[nodiscard]] const CUpdateInfo& last() const { return m_infos.back(); }

private:
    std::vector<CUpdateInfo> m_infos;
};

TEST(UpdateNotifier, CallsThoseFiledUnderTheKeyAlone)
{
    const CTestModule module;
    CUpdateNotifier notifier;
    CUpdateNotifier other;
    CRecorder one;
    CRecorder two;
    CRecorder none;
    one.attach(&notifier, 1);
    two.attach(&notifier, 2);
    none.attach(&notifier);
    const CUpdateInfo info{&one, 1};
    notifier.notify(&info);
    EXPECT_EQ(one.count(), 1u);
    EXPECT_EQ(one.last().sender, &one);
    EXPECT_EQ(two.count() + none.count(), 0u);
    notifier.notify();
    EXPECT_EQ(none.count(), 1u) << "without an info the key is 0";

    one.attach(&other, 7);
    notifier.notify(&info);
    EXPECT_EQ(one.count(), 1u) << "it has left the first notifier";
    EXPECT_EQ(one.key(), 7u);
    one.detach();
    const CUpdateInfo seven{nullptr, 7};
    other.notify(&seven);
    EXPECT_EQ(one.count(), 1u);
    EXPECT_FALSE(one.isAttached());
}

TEST(UpdateNotifier, EitherSideMayDieFirst)
{
    const CTestModule module;
    auto notifier = std::make_unique<CUpdateNotifier>();
    auto gone = std::make_unique<CRecorder>();
    CRecorder stays;
    gone->attach(notifier.get());
    stays.attach(notifier.get());
    gone.reset();
    notifier->notify();
    EXPECT_EQ(stays.count(), 1u);
    notifier.reset();
    EXPECT_FALSE(stays.isAttached());
    stays.detach();
}

TEST(UpdateNotifier, ListenerTellsAYoungerNotifierAtTheSameAddressFromItsOwn)
{
    const CTestModule module;
    std::optional<CUpdateNotifier> place;
    place.emplace();
    CUpdateNotifier* const address = &*place;
    CRecorder listener;
    CRecorder younger;
    listener.attach(address);
    const CNotifierRef stale = place->ref();
    place.reset();
    CRecorder late;
    late.attach(stale, 5);
    EXPECT_FALSE(late.isAttached());
    EXPECT_EQ(late.key(), 0u);

    place.emplace();
    ASSERT_EQ(&*place, address);
    late.attach(stale, 5);
    EXPECT_FALSE(late.isAttached());
    EXPECT_FALSE(listener.isAttached());
    younger.attach(address);
    listener.detach();
    place->notify();
    EXPECT_EQ(younger.count(), 1u);
    EXPECT_EQ(listener.count(), 0u);
}

/// A listener whose calls would meet freed or wrong memory if they came after its end.
class CFragile final : public CUpdateListener {
public:
    explicit CFragile(std::atomic<int>& calls) : m_calls(calls), m_owned(std::make_unique<int>(1)) {}
    ~CFragile() override
    {
        detach();
        m_owned.reset();
    }
    void onUpdate(const CUpdateInfo&) override { m_calls += *m_owned; }

private:
    std::atomic<int>& m_calls;
    std::unique_ptr<int> m_owned;
};

/// A notifier whose keys come from a field of its own.
class CKeyed final : public CUpdateNotifier {
public:
    ~CKeyed() override { retire(); }
    std::uint64_t getUpdateKey(const CUpdateKeyArg& arg) override { return *m_base + arg.number; }

private:
    std::unique_ptr<std::uint64_t> m_base = std::make_unique<std::uint64_t>(100);
};

TEST(UpdateNotifier, SurvivesListenersAndNotifiersThatComeAndGoOnSeveralThreads)
{
    const CTestModule module;
    constexpr int kEnoughCalls = 200;
    std::atomic<int> calls{0};
    platform::CRecursiveLock sharedLock{50};
    CNotifierRef shared;
    const auto seen = [&] {
        const platform::CScopedLock guard(sharedLock);
        return shared;
    };
    std::atomic<bool> isDone{false};
    // One thread makes, uses and destroys the notifier; two others attach to what they have seen, dead or alive.
    const auto notify = [&] {
        std::minstd_rand random(99);
        while (calls < kEnoughCalls) {
            auto notifier = std::make_unique<CKeyed>();
            {
                const platform::CScopedLock guard(sharedLock);
                shared = notifier->ref();
            }
            // Some live long enough to be heard, most do not.
            for (auto left = random() % 8 == 0 ? 64 : random() % 3; left > 0; --left) {
                const CUpdateInfo info{nullptr, 100 + left % 3};
                notifier->notify(&info);
                std::this_thread::yield();
            }
        }
        isDone = true;
    };
    const auto listen = [&](unsigned seed) {
        std::minstd_rand random(seed);
        while (!isDone) {
            CFragile stays(calls);
            CFragile moves(calls);
            for (int i = 0; i < 4; ++i) {
                stays.attach(seen(), random() % 3);
                moves.attach(random() % 4 == 0 ? CNotifierRef{} : seen(), random() % 3);
            }
        }
    };
    std::vector<platform::CSystemThread> threads(3);
    ASSERT_EQ(threads[0].start("notify", notify, platform::EThreadPriority::normal), 0);
    for (unsigned i = 1; i < 3; ++i)
        ASSERT_EQ(threads[i].start(
                      "listen", [&, i] { listen(i); }, platform::EThreadPriority::normal),
                  0);
    for (auto& thread : threads)
        thread.join();
}

} // namespace
} // namespace qrb
