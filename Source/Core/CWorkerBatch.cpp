// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CWorkerBatch.h"

#include "Core/CPersistentThread.h"
#include "Core/CProcessState.h"
#include "Core/CWorkerThreadPool.h"

#include <utility>

namespace qrb {

CWorkerBatch::CWorkerBatch() = default;

CWorkerBatch::~CWorkerBatch()
{
    static_cast<void>(finish());
}

CErrorPtr CWorkerBatch::add(std::unique_ptr<CWorkerThread> job)
{
    std::unique_ptr<CPersistentThread> worker;
    QRB_TRY(processState().workers->takeWorker(worker));
    worker->setJob(std::move(job));
    m_workers.append(std::move(worker));
    return nullptr;
}

void CWorkerBatch::start()
{
    m_isStarted = true;
    for (const std::unique_ptr<CPersistentThread>& worker : m_workers)
        worker->wake();
}

CErrorPtr CWorkerBatch::finish()
{
    CErrorPtr first;
    for (std::unique_ptr<CPersistentThread>& worker : m_workers) {
        if (m_isStarted) {
            worker->waitForJob();
            CErrorPtr error = worker->job()->takeError();
            if (error && !first)
                first = std::move(error);
        }
        processState().workers->giveBackWorker(std::move(worker));
    }
    m_workers.clear();
    m_isStarted = false;
    return first;
}

} // namespace qrb
