// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CUpdateListener.h"

#include "Core/CNotifierListeners.h"
#include "Core/CNotifierRef.h"
#include "Core/CNotifierTable.h"
#include "Core/CProcessState.h"
#include "Core/CUpdateNotifier.h"

namespace qrb {

using platform::CScopedLock;

CUpdateListener::~CUpdateListener()
{
    detach();
}

void CUpdateListener::attach(CUpdateNotifier* notifier, const CUpdateKeyArg& arg)
{
    attach(notifier != nullptr ? notifier->ref() : CNotifierRef{}, arg);
}

void CUpdateListener::detach()
{
    attach(CNotifierRef{});
}

void CUpdateListener::attach(const CNotifierRef& notifier, const CUpdateKeyArg& arg)
{
    const CScopedLock guard(m_lock);
    if (m_notifier != nullptr)
        m_notifier->remove(*this, m_key);
    m_notifier = nullptr;
    m_key = 0;
    if (notifier.serial == 0)
        return;
    const std::shared_ptr<CNotifierListeners> found = processState().notifiers->find(notifier);
    if (found != nullptr && found->add(*this, arg, m_key))
        m_notifier = found;
}

bool CUpdateListener::isAttached()
{
    const CScopedLock guard(m_lock);
    return m_notifier != nullptr && m_notifier->isAlive();
}

std::uint64_t CUpdateListener::key()
{
    const CScopedLock guard(m_lock);
    return m_key;
}

} // namespace qrb
