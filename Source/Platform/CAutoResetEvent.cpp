// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/CAutoResetEvent.h"

#include <algorithm>
#include <chrono>

namespace qrb::platform {

void CAutoResetEvent::signal()
{
    // Notified under the mutex: a waiter may destroy the event as soon as it has seen the signal.
    const std::lock_guard guard(m_mutex);
    m_isSignalled = true;
    m_condition.notify_one();
}

void CAutoResetEvent::wait()
{
    std::unique_lock guard(m_mutex);
    m_condition.wait(guard, [this] { return m_isSignalled; });
    m_isSignalled = false;
}

bool CAutoResetEvent::waitFor(double seconds)
{
    constexpr double kLongestWait = 1.0e6; // keeps the sum with the clock's reading in range
    const std::chrono::duration<double> duration(std::clamp(seconds, 0.0, kLongestWait));
    std::unique_lock guard(m_mutex);
    if (!m_condition.wait_for(guard, duration, [this] { return m_isSignalled; }))
        return false;
    m_isSignalled = false;
    return true;
}

} // namespace qrb::platform
