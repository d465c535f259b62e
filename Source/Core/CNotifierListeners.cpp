// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CNotifierListeners.h"

#include "Core/CUpdateListener.h"
#include "Core/CUpdateNotifier.h"

namespace qrb {

using platform::CScopedLock;

bool CNotifierListeners::add(CUpdateListener& listener, const CUpdateKeyArg& arg, std::uint64_t& key)
{
    const CScopedLock guard(m_lock);
    if (m_notifier == nullptr)
        return false;
    key = m_notifier->getUpdateKey(arg);
    m_listeners[key].insert(&listener);
    return true;
}

void CNotifierListeners::remove(CUpdateListener& listener, std::uint64_t key)
{
    const CScopedLock guard(m_lock);
    const auto found = m_listeners.find(key);
    if (found == m_listeners.end())
        return;
    found->second.erase(&listener);
    if (found->second.empty())
        m_listeners.erase(found);
}

void CNotifierListeners::notify(const CUpdateInfo& info)
{
    const CScopedLock guard(m_lock);
    // Looked up anew after each call: a listener may have changed the set, against the rules, but not fatally so.
    CUpdateListener* last = nullptr;
    while (true) {
        const auto found = m_listeners.find(info.key);
        if (found == m_listeners.end())
            return;
        const auto next = found->second.upper_bound(last);
        if (next == found->second.end())
            return;
        last = *next;
        last->onUpdate(info);
    }
}

void CNotifierListeners::markDead()
{
    const CScopedLock guard(m_lock);
    m_notifier = nullptr;
    m_listeners.clear();
}

bool CNotifierListeners::isAlive()
{
    const CScopedLock guard(m_lock);
    return m_notifier != nullptr;
}

} // namespace qrb
