// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CCheckedObject.h"
#include "Core/CError.h"

#include <cstddef>
#include <memory>

namespace qrb {

class CPersistentThread;
class CWorkerThread;

/// Jobs that run beside each other on workers of the pool, while the caller does a share of the work itself:
/// add() each job, start(), the own share, finish(). Belongs to one thread.
class CWorkerBatch : public CCheckedObject {
public:
    CWorkerBatch();
    CWorkerBatch(const CWorkerBatch&) = delete;
    CWorkerBatch& operator=(const CWorkerBatch&) = delete;
    /// Waits for jobs that were started; their errors are dropped.
    ~CWorkerBatch() override;

    /// Takes a worker for the job.
    [[nodiscard]] CErrorPtr add(std::unique_ptr<CWorkerThread> job);
    [[nodiscard]] std::size_t size() const { return m_workers.size(); }
    void start();
    /// Sleeps until all jobs are done, gives the workers back and the jobs up. The first error in the order of adding.
    [[nodiscard]] CErrorPtr finish();

private:
    CArray<std::unique_ptr<CPersistentThread>> m_workers;
    bool m_isStarted = false;
};

} // namespace qrb
