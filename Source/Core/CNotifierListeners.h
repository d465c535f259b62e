// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CQrbStdAllocator.h"
#include "Core/CUpdateInfo.h"
#include "Platform/CRecursiveLock.h"

#include <cstdint>

namespace qrb {

class CUpdateListener;
class CUpdateNotifier;

/// Who listens to one notifier. Shared by the notifier and its listeners, so that it outlives whichever side dies
/// first: a dying notifier only marks it dead, and never visits listeners that may be gone. Thread: any.
class CNotifierListeners {
public:
    CNotifierListeners(CUpdateNotifier& notifier, std::uint64_t serial) : m_serial(serial), m_notifier(&notifier) {}

    CNotifierListeners(const CNotifierListeners&) = delete;
    CNotifierListeners& operator=(const CNotifierListeners&) = delete;

    /// Number of the notifier, see CNotifierRef.
    [[nodiscard]] std::uint64_t serial() const { return m_serial; }
    /// Files a listener under the key that the notifier makes of `arg`; false if the notifier is dead.
    [[nodiscard]] bool add(CUpdateListener& listener, const CUpdateKeyArg& arg, std::uint64_t& key);
    /// After this no notification reaches the listener; waits for one that is under way on another thread.
    void remove(CUpdateListener& listener, std::uint64_t key);
    /// Calls the listeners of the key in the order of their addresses, under the lock.
    void notify(const CUpdateInfo& info);
    /// The notifier is going; waits for a notification under way.
    void markDead();
    [[nodiscard]] bool isAlive();

private:
    const std::uint64_t m_serial;
    platform::CRecursiveLock m_lock{50};
    CUpdateNotifier* m_notifier; ///< null when dead
    CMap<std::uint64_t, CSet<CUpdateListener*>> m_listeners;
};

} // namespace qrb
