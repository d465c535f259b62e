// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CWorkerThreadPool.h"

#include "Core/CPersistentThread.h"

#include <utility>

namespace qrb {

using platform::CScopedLock;

CWorkerThreadPool::CWorkerThreadPool() = default;

CWorkerThreadPool::~CWorkerThreadPool()
{
    clearWorkers();
}

CErrorPtr CWorkerThreadPool::takeWorker(std::unique_ptr<CPersistentThread>& out)
{
    {
        const CScopedLock guard(m_lock);
        if (m_head != nullptr) {
            out = std::move(m_head);
            m_head = std::move(out->m_nextIdle);
            return nullptr;
        }
    }
    auto worker = std::make_unique<CPersistentThread>("worker-thread");
    QRB_TRY(worker->runThread());
    out = std::move(worker);
    return nullptr;
}

void CWorkerThreadPool::giveBackWorker(std::unique_ptr<CPersistentThread> worker)
{
    worker->setJob(nullptr);
    const CScopedLock guard(m_lock);
    worker->m_nextIdle = std::move(m_head);
    m_head = std::move(worker);
}

void CWorkerThreadPool::clearWorkers()
{
    std::unique_ptr<CPersistentThread> worker;
    {
        const CScopedLock guard(m_lock);
        worker = std::move(m_head);
    }
    // Ended without the lock, since each is waited for.
    while (worker != nullptr)
        worker = std::exchange(worker->m_nextIdle, nullptr);
}

} // namespace qrb
