// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CThread.h"

namespace qrb {

CThread::CThread(const CString& name) : m_name(name) {}

CThread::~CThread()
{
    stopThread();
}

CErrorPtr CThread::runThread(platform::EThreadPriority priority)
{
    if (m_isRunning)
        return QRB_ERROR("@qrbstr_CThread_runThread_AlreadyRunning Thread is already running.");
    m_isStopping = false;
    // A body that ended by itself left the signal of its stop behind.
    static_cast<void>(m_stopEvent.waitFor(0.0));
    const auto body = [this] {
        if (CErrorPtr error = run())
            reportError(std::move(error));
    };
    const int error = m_thread.start(m_name.toUtf8().c_str(), body, priority);
    if (error != 0)
        return QRB_ERROR("@qrbstr_CThread_runThread_createThreadError Thread creation error %1.", error);
    m_isRunning = true;
    return nullptr;
}

void CThread::stopThread()
{
    if (!m_isRunning)
        return;
    m_isRunning = false;
    m_isStopping = true;
    m_stopEvent.signal();
    m_thread.join();
}

} // namespace qrb
