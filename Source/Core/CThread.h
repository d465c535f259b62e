// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CError.h"
#include "Core/CString.h"
#include "Platform/CAutoResetEvent.h"
#include "Platform/CSystemThread.h"

#include <atomic>

namespace qrb {

/// A thread with a body to override. Whoever owns it starts and stops it. The final class calls stopThread() first in
/// its destructor, so that the body never runs on a half destroyed object.
class CThread : public CCheckedObject {
public:
    explicit CThread(const CString& name);
    CThread(const CThread&) = delete;
    CThread& operator=(const CThread&) = delete;
    ~CThread() override;

    /// Starts the thread; its stop flag is clear again.
    [[nodiscard]] CErrorPtr runThread(platform::EThreadPriority priority = platform::EThreadPriority::normal);
    /// Asks the body to end and waits until it has; nothing to do if it does not run. The stop flag stays set.
    void stopThread();
    [[nodiscard]] bool isRunning() const { return m_isRunning; }

protected:
    /// The body. It ends soon once isStopping() is true, which it looks at after every wait on stopEvent(). An error it
    /// returns is reported. Thread: the new one.
    [[nodiscard]] virtual CErrorPtr run() = 0;

    /// Thread: any.
    [[nodiscard]] bool isStopping() const { return m_isStopping; }
    [[nodiscard]] platform::CAutoResetEvent& stopEvent() { return m_stopEvent; }

private:
    const CString m_name;
    platform::CAutoResetEvent m_stopEvent;
    std::atomic<bool> m_isStopping{false};
    bool m_isRunning = false;
    platform::CSystemThread m_thread;
};

} // namespace qrb
