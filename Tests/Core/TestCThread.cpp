// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CErrorReporter.h"
#include "Core/CPersistentThread.h"
#include "Core/CProcessState.h"
#include "Core/CThread.h"
#include "Core/CWorkerBatch.h"
#include "Core/CWorkerThreadPool.h"
#include "Tests/Support/CTestModule.h"

#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace qrb {
namespace {

class CBodyThread final : public CThread {
public:
    explicit CBodyThread(std::function<CErrorPtr(CBodyThread&)> body) : CThread("test"), m_body(std::move(body)) {}
    ~CBodyThread() override { stopThread(); }
    using CThread::isStopping;
    using CThread::stopEvent;

protected:
    CErrorPtr run() override { return m_body(*this); }

private:
    std::function<CErrorPtr(CBodyThread&)> m_body;
};

class CJob final : public CWorkerThread {
public:
    explicit CJob(std::function<CErrorPtr()> body) : m_body(std::move(body)) {}
    CErrorPtr run() override { return m_body(); }

private:
    std::function<CErrorPtr()> m_body;
};

std::unique_ptr<CJob> job(std::function<CErrorPtr()> body)
{
    return std::make_unique<CJob>(std::move(body));
}

TEST(Thread, RunsUntilStoppedAndCanBeStartedAgain)
{
    std::atomic<int> starts{0};
    CBodyThread thread([&](CBodyThread& self) -> CErrorPtr {
        ++starts;
        while (!self.isStopping())
            self.stopEvent().wait();
        return nullptr;
    });
    for (int i = 0; i < 3; ++i) {
        ASSERT_FALSE(thread.runThread(platform::EThreadPriority::timeCritical));
        EXPECT_EQ(errorText(thread.runThread()).substr(0, 26), "Thread is already running.");
        thread.stopThread();
        EXPECT_FALSE(thread.isRunning());
    }
    EXPECT_EQ(starts, 3);
}

TEST(Thread, StopOfABodyThatEndedByItselfDoesNotDisturbTheNextRun)
{
    platform::CAutoResetEvent looked;
    bool wasStopped = false;
    CBodyThread thread([&](CBodyThread& self) -> CErrorPtr {
        wasStopped = self.isStopping() || self.stopEvent().waitFor(0.0);
        looked.signal();
        return nullptr;
    });
    for (int i = 0; i < 2; ++i) {
        ASSERT_FALSE(thread.runThread());
        looked.wait();
        EXPECT_FALSE(wasStopped) << "run " << i;
        thread.stopThread();
    }
}

TEST(Thread, ErrorOfTheBodyIsReported)
{
    class CReporter final : public CErrorReporter {
    public:
        void showError(const CString& details) override { m_text = details.toUtf8(); }
        std::string m_text;
    } reporter;
    CBodyThread thread([](CBodyThread&) -> CErrorPtr { return QRB_ERROR("@qrbstr_Test_run_Failed It failed."); });
    ASSERT_FALSE(thread.runThread());
    thread.stopThread();
    EXPECT_EQ(reporter.m_text.substr(0, 10), "It failed.");
}

TEST(WorkerBatch, RunsAllJobsAndGivesTheFirstErrorInTheirOrder)
{
    const CTestModule module;
    std::atomic<int> runs{0};
    for (int round = 0; round < 50; ++round) {
        CWorkerBatch batch;
        for (int i = 0; i < 4; ++i) {
            const auto body = [&runs, i]() -> CErrorPtr {
                ++runs;
                if (i == 0 || i == 3)
                    return nullptr;
                return i == 1 ? QRB_ERROR("first") : QRB_ERROR("second");
            };
            ASSERT_FALSE(batch.add(job(body)));
        }
        batch.start();
        const CErrorPtr error = batch.finish();
        ASSERT_TRUE(error);
        EXPECT_EQ(error->line(0), "first");
        EXPECT_FALSE(batch.finish()) << "the batch is over";
    }
    EXPECT_EQ(runs, 200);
    processState().workers->clearWorkers();
}

TEST(WorkerBatch, AbandonedBatchesWaitForWhatTheyStartedAndRunNothingElse)
{
    const CTestModule module;
    bool hasRun = false; // no atomic: the end of the batch is what makes it safe to read
    {
        CWorkerBatch batch;
        ASSERT_FALSE(batch.add(job([&]() -> CErrorPtr {
            hasRun = true;
            return nullptr;
        })));
        batch.start();
    }
    EXPECT_TRUE(hasRun);
    {
        CWorkerBatch batch;
        ASSERT_FALSE(batch.add(job([&]() -> CErrorPtr {
            hasRun = false;
            return nullptr;
        })));
    }
    processState().workers->clearWorkers();
    EXPECT_TRUE(hasRun);
}

TEST(WorkerThreadPool, HandsIdleWorkersOutAgainAndForgetsTheirJobs)
{
    const CTestModule module;
    CWorkerThreadPool& pool = *processState().workers;
    auto canary = std::make_shared<int>(1);
    std::unique_ptr<CPersistentThread> worker;
    ASSERT_FALSE(pool.takeWorker(worker));
    worker->setJob(job([canary]() -> CErrorPtr { return nullptr; }));
    worker->wake();
    worker->waitForJob();
    CPersistentThread* const first = worker.get();
    pool.giveBackWorker(std::move(worker));
    EXPECT_EQ(canary.use_count(), 1);
    std::unique_ptr<CPersistentThread> again;
    std::unique_ptr<CPersistentThread> another;
    ASSERT_FALSE(pool.takeWorker(again));
    ASSERT_FALSE(pool.takeWorker(another));
    EXPECT_EQ(again.get(), first);
    EXPECT_NE(another.get(), first);
    pool.giveBackWorker(std::move(again));
    pool.giveBackWorker(std::move(another));
    pool.clearWorkers();
}

} // namespace
} // namespace qrb
