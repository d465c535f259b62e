// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <condition_variable>
#include <mutex>

namespace qrb::platform {

/// A flag to wait for: one waiter goes on for each `signal`, and takes the signal with it. Signals do not add up.
/// Thread: any.
class CAutoResetEvent {
public:
    CAutoResetEvent() = default;
    CAutoResetEvent(const CAutoResetEvent&) = delete;
    CAutoResetEvent& operator=(const CAutoResetEvent&) = delete;

    void signal();
    void wait();
    /// Waits at most `seconds`; false if no signal came. 0 looks and returns at once.
    [[nodiscard]] bool waitFor(double seconds);

private:
    std::mutex m_mutex;
    std::condition_variable m_condition;
    bool m_isSignalled = false;
};

} // namespace qrb::platform
