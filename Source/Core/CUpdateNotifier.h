// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CNotifierRef.h"
#include "Core/CUpdateInfo.h"

#include <cstdint>
#include <memory>

namespace qrb {

class CNotifierListeners;

/// Something that others, also of other trees and threads, can watch through a CUpdateListener. Either side may die
/// first. Lives between module entry and exit. Thread: any, destruction aside.
class CUpdateNotifier : public CCheckedObject {
public:
    CUpdateNotifier();
    CUpdateNotifier(const CUpdateNotifier&) = delete;
    CUpdateNotifier& operator=(const CUpdateNotifier&) = delete;
    ~CUpdateNotifier() override;

    /// What others keep to attach to this notifier when it may be gone by then.
    [[nodiscard]] CNotifierRef ref() const;

    /// The key that listeners with this argument are filed under; its number, by default. Called under the lock of
    /// the listeners.
    [[nodiscard]] virtual std::uint64_t getUpdateKey(const CUpdateKeyArg& arg);

    /// Calls all who listen to the key, on this thread and under the lock of the listeners: the caller holds no lock
    /// that a listener's work or another thread's attaching might wait for. Without an info the key is 0.
    void notify(const CUpdateInfo* info = nullptr);

protected:
    /// Ends this notifier's life for its listeners. Called first in the destructor of a class whose getUpdateKey reads
    /// its own fields, since listeners of other threads may attach up to then.
    void retire();

private:
    const std::shared_ptr<CNotifierListeners> m_listeners;
};

} // namespace qrb
