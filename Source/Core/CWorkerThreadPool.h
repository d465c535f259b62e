// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CError.h"
#include "Platform/CRecursiveLock.h"

#include <memory>

namespace qrb {

class CPersistentThread;

/// Idle worker threads of the process. Thread: any.
class CWorkerThreadPool : public CCheckedObject {
public:
    CWorkerThreadPool();
    CWorkerThreadPool(const CWorkerThreadPool&) = delete;
    CWorkerThreadPool& operator=(const CWorkerThreadPool&) = delete;
    ~CWorkerThreadPool() override;

    /// An idle worker, or a new one.
    [[nodiscard]] CErrorPtr takeWorker(std::unique_ptr<CPersistentThread>& out);
    /// Makes a worker with no job pending idle again; its job is destroyed.
    void giveBackWorker(std::unique_ptr<CPersistentThread> worker);
    /// Ends all idle workers, so that they do not outlive those who used them; the next user makes new ones.
    void clearWorkers();

private:
    platform::CRecursiveLock m_lock{4000};
    std::unique_ptr<CPersistentThread> m_head;
};

} // namespace qrb
