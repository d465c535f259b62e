// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CPersistentThreadBase.h"
#include "Core/CWorkerThread.h"
#include "Platform/CRecursiveLock.h"

#include <memory>

namespace qrb {

/// A thread that runs one job after the other without being made anew. From wake() until it is no longer pending the
/// job belongs to the thread, before and after to whoever holds the worker.
class CPersistentThread final : public CPersistentThreadBase {
public:
    using CPersistentThreadBase::CPersistentThreadBase;
    /// Waits for the job under way.
    ~CPersistentThread() override;

    /// Replaces the job, which is not pending; null for none.
    void setJob(std::unique_ptr<CWorkerThread> job) { m_job = std::move(job); }
    [[nodiscard]] CWorkerThread* job() const { return m_job.get(); }

    void wake() override;
    /// Thread: any.
    [[nodiscard]] bool isPending();
    /// Sleeps until the job is done. For one thread at a time, while the worker runs.
    void waitForJob();

protected:
    [[nodiscard]] CErrorPtr run() override;

private:
    friend class CWorkerThreadPool;

    platform::CRecursiveLock m_lock{50};
    bool m_isPending = false;
    platform::CAutoResetEvent m_doneEvent;
    std::unique_ptr<CWorkerThread> m_job;
    std::unique_ptr<CPersistentThread> m_nextIdle; ///< in the pool
};

} // namespace qrb
