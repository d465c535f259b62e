// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <mutex>

namespace qrb::platform {

/// Recursive mutual exclusion that spins a while before it sleeps. The thread that holds it may enter again and leaves
/// as often as it entered. Thread: any.
class CRecursiveLock {
public:
    /// `spinCount`: attempts made before the thread is put to sleep; 4000 for process-wide tables, 50 for locks held
    /// for a few instructions.
    explicit CRecursiveLock(unsigned spinCount = 0) : m_spinCount(spinCount) {}

    CRecursiveLock(const CRecursiveLock&) = delete;
    CRecursiveLock& operator=(const CRecursiveLock&) = delete;

    void enter();
    /// Enters if that needs no waiting; true when entered.
    [[nodiscard]] bool tryEnter() { return m_mutex.try_lock(); }
    void leave() { m_mutex.unlock(); }

private:
    std::recursive_mutex m_mutex;
    unsigned m_spinCount;
};

/// Holds a lock for the length of a scope.
class CScopedLock {
public:
    [[nodiscard]] explicit CScopedLock(CRecursiveLock& lock) : m_lock(lock) { m_lock.enter(); }
    ~CScopedLock() { m_lock.leave(); }

    CScopedLock(const CScopedLock&) = delete;
    CScopedLock& operator=(const CScopedLock&) = delete;

private:
    CRecursiveLock& m_lock;
};

} // namespace qrb::platform
