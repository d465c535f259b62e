// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>

namespace qrb::platform {

enum class EThreadPriority {
    normal,
    timeCritical ///< real-time scheduling where the system grants it, else like `normal`
};

/// A thread of the system. Whoever owns this object starts and joins it.
class CSystemThread {
public:
    CSystemThread() = default;
    /// Joins a thread that still runs.
    ~CSystemThread();

    CSystemThread(const CSystemThread&) = delete;
    CSystemThread& operator=(const CSystemThread&) = delete;

    /// Runs `body` in a new thread with the default stack size, which the system's tools show as `name` (at most 15
    /// bytes of it). Gives 0 or the system's error number; EBUSY while the last thread has not been joined. Signals of
    /// the process are not delivered to the new thread, those of its own faults are.
    [[nodiscard]] int start(const char* name, std::function<void()> body, EThreadPriority priority);
    /// Waits for the end of the body; nothing to do without a thread. Not to be called from the thread itself.
    void join();
    [[nodiscard]] bool isStarted() const { return m_isStarted; }

    /// A number that no other living thread of the process has; never 0. Thread: any.
    [[nodiscard]] static std::uint64_t currentId();

private:
    std::uint64_t m_handle = 0;
    bool m_isStarted = false;
};

} // namespace qrb::platform
