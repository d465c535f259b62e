// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CNotifyRecord.h"

#include <utility>

namespace qrb {

const CNotifyRecord::Listeners* CNotifyRecord::listeners(const CObject& sender) const
{
    const auto found = m_listeners.find(&sender);
    return found != m_listeners.end() ? &found->second : nullptr;
}

void CNotifyRecord::add(const CObject& sender, CObject& listener, const CObjectEvent& handler)
{
    Listeners& listeners = m_listeners[&sender];
    for (CListener& each : listeners) {
        if (each.object == &listener) {
            each.handler = &handler;
            return;
        }
    }
    listeners.append({&listener, &handler});
}

void CNotifyRecord::remove(const CObject& sender, const CObject& listener)
{
    const auto found = m_listeners.find(&sender);
    if (found == m_listeners.end())
        return;
    Listeners& listeners = found->second;
    for (std::size_t index = listeners.size(); index-- > 0;) {
        if (listeners[index].object == &listener)
            listeners.removeAt(index);
    }
    if (listeners.empty())
        m_listeners.erase(found);
    for (CFrame* const frame : m_frames) {
        if (frame->m_sender != &sender)
            continue;
        for (CListener& call : frame->calls) {
            if (call.object == &listener)
                call.object = nullptr;
        }
    }
}

CNotifyRecord::Listeners CNotifyRecord::removeSender(const CObject& sender)
{
    Listeners gone;
    const auto found = m_listeners.find(&sender);
    if (found != m_listeners.end()) {
        gone = std::move(found->second);
        m_listeners.erase(found);
    }
    for (CFrame* const frame : m_frames) {
        if (frame->m_sender == &sender) {
            frame->calls.clear();
            frame->m_sender = nullptr;
        }
    }
    return gone;
}

} // namespace qrb
