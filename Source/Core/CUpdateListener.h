// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CUpdateInfo.h"
#include "Platform/CRecursiveLock.h"

#include <cstdint>
#include <memory>

namespace qrb {

class CNotifierListeners;
class CUpdateNotifier;
struct CNotifierRef;

/// Hears of changes of one notifier. A class that overrides onUpdate calls detach() first in its destructor: once that
/// is back no call is under way on any thread, so none can meet a half destroyed object. Thread: any.
class CUpdateListener : public CCheckedObject {
public:
    CUpdateListener() = default;
    CUpdateListener(const CUpdateListener&) = delete;
    CUpdateListener& operator=(const CUpdateListener&) = delete;
    ~CUpdateListener() override;

    /// Leaves the present notifier and joins another, which lives; null only leaves.
    void attach(CUpdateNotifier* notifier, const CUpdateKeyArg& arg = {});
    /// The same for a notifier that may be gone, or go meanwhile; the listener then stays unattached.
    void attach(const CNotifierRef& notifier, const CUpdateKeyArg& arg = {});
    void detach();
    /// Whether a living notifier is attached.
    [[nodiscard]] bool isAttached();
    /// What this listener is filed under; 0 when unattached.
    [[nodiscard]] std::uint64_t key();

    /// Something of the key has changed. Runs on the thread that changed it, under the notifier's lock: be short, do
    /// not attach, detach or destroy listeners of the same notifier, hand work to the own thread.
    virtual void onUpdate(const CUpdateInfo& info) = 0;

private:
    platform::CRecursiveLock m_lock{50};
    std::shared_ptr<CNotifierListeners> m_notifier;
    std::uint64_t m_key = 0;
};

} // namespace qrb
