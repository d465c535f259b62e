// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CNotifierTable.h"

#include "Core/CNotifierListeners.h"
#include "Core/CNotifierRef.h"

namespace qrb {

using platform::CScopedLock;

CNotifierTable::CBucket& CNotifierTable::bucket(const CUpdateNotifier* notifier)
{
    const auto address = reinterpret_cast<std::uintptr_t>(notifier);
    return m_buckets[(address >> 4 ^ address >> 12 ^ address >> 20 ^ address >> 28) % kBucketCount];
}

void CNotifierTable::add(const CUpdateNotifier* notifier, std::shared_ptr<CNotifierListeners> listeners)
{
    CBucket& place = bucket(notifier);
    const CScopedLock guard(place.lock);
    place.notifiers[notifier] = std::move(listeners);
}

void CNotifierTable::remove(const CUpdateNotifier* notifier)
{
    CBucket& place = bucket(notifier);
    const CScopedLock guard(place.lock);
    place.notifiers.erase(notifier);
}

std::shared_ptr<CNotifierListeners> CNotifierTable::find(const CNotifierRef& ref)
{
    CBucket& place = bucket(ref.notifier);
    const CScopedLock guard(place.lock);
    const auto found = place.notifiers.find(ref.notifier);
    const bool isThere = found != place.notifiers.end() && found->second->serial() == ref.serial;
    return isThere ? found->second : nullptr;
}

} // namespace qrb
