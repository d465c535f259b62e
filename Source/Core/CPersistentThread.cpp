// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CPersistentThread.h"

namespace qrb {

using platform::CScopedLock;

CPersistentThread::~CPersistentThread()
{
    stopThread();
}

void CPersistentThread::wake()
{
    const CScopedLock guard(m_lock);
    m_isPending = true;
    stopEvent().signal();
}

bool CPersistentThread::isPending()
{
    const CScopedLock guard(m_lock);
    return m_isPending;
}

void CPersistentThread::waitForJob()
{
    while (isPending())
        m_doneEvent.wait();
}

CErrorPtr CPersistentThread::run()
{
    stopEvent().wait();
    while (!isStopping()) {
        if (m_job != nullptr)
            m_job->runAndKeepError();
        {
            const CScopedLock guard(m_lock);
            m_isPending = false;
            m_doneEvent.signal();
        }
        stopEvent().wait();
    }
    return nullptr;
}

} // namespace qrb
