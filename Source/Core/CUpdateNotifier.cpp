// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CUpdateNotifier.h"

#include "Core/CNotifierListeners.h"
#include "Core/CNotifierTable.h"
#include "Core/CProcessState.h"
#include "Core/CQrbStdAllocator.h"

namespace qrb {

CUpdateNotifier::CUpdateNotifier()
    : m_listeners(std::allocate_shared<CNotifierListeners>(CQrbStdAllocator<CNotifierListeners>(), *this,
                                                           processState().notifiers->takeSerial()))
{
    processState().notifiers->add(this, m_listeners);
}

CUpdateNotifier::~CUpdateNotifier()
{
    retire();
}

void CUpdateNotifier::retire()
{
    // Null for those that go with the state itself.
    if (CProcessState* const state = processStateOrNull())
        state->notifiers->remove(this);
    m_listeners->markDead();
}

CNotifierRef CUpdateNotifier::ref() const
{
    return {this, m_listeners->serial()};
}

std::uint64_t CUpdateNotifier::getUpdateKey(const CUpdateKeyArg& arg)
{
    return arg.number;
}

void CUpdateNotifier::notify(const CUpdateInfo* info)
{
    // Handed on as it is, not copied: a notifier's own kind of info tells more.
    const CUpdateInfo nothing;
    m_listeners->notify(info != nullptr ? *info : nothing);
}

} // namespace qrb
