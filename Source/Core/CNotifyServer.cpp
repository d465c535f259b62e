// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CNotifyServer.h"

#include "Core/CNotifyRecord.h"
#include "Core/CObject.h"
#include "Core/CObjectClassInfo.h"
#include "Core/CObjectEventBridge.h"
#include "Platform/CSystemThread.h"

#include <utility>

namespace qrb {

CNotifyServer::CNotifyServer(std::uint32_t number) : m_number(number) {}

CNotifyServer::~CNotifyServer() = default;

CNotifyRecord* CNotifyServer::findRecord(const CString& eventName)
{
    const platform::CScopedLock guard(m_mapLock);
    const auto found = m_records.find(eventName);
    return found != m_records.end() ? found->second.get() : nullptr;
}

CNotifyRecord& CNotifyServer::makeRecord(const CString& eventName)
{
    const platform::CScopedLock guard(m_mapLock);
    std::unique_ptr<CNotifyRecord>& record = m_records[eventName];
    if (record == nullptr)
        record.reset(new CNotifyRecord(eventName));
    return *record;
}

void CNotifyServer::listen(const CObject& sender, const CString& eventName, CObject& listener,
                           const CObjectEvent& handler)
{
    CNotifyRecord& record = makeRecord(eventName);
    const platform::CScopedLock recordGuard(record.lock());
    record.add(sender, listener, handler);
    const platform::CScopedLock mapGuard(m_mapLock);
    m_uses[&sender].insert({&record, &sender});
    m_uses[&listener].insert({&record, &sender});
}

void CNotifyServer::unlisten(const CObject& sender, const CString& eventName, const CObject& listener)
{
    CNotifyRecord* const record = findRecord(eventName);
    if (record == nullptr)
        return;
    const platform::CScopedLock recordGuard(record->lock());
    record->remove(sender, listener);
    if (&sender != &listener)
        forgetUse(listener, *record, sender);
}

void CNotifyServer::removeObject(const CObject& object)
{
    Uses uses;
    {
        const platform::CScopedLock guard(m_mapLock);
        const auto found = m_uses.find(&object);
        if (found == m_uses.end())
            return;
        uses = std::move(found->second);
        m_uses.erase(found);
    }
    for (const auto& [record, sender] : uses) {
        const platform::CScopedLock guard(record->lock());
        if (sender != &object) {
            record->remove(*sender, object);
            continue;
        }
        for (const CNotifyRecord::CListener& listener : record->removeSender(object))
            forgetUse(*listener.object, *record, object);
    }
}

void CNotifyServer::forgetUse(const CObject& object, CNotifyRecord& record, const CObject& sender)
{
    const platform::CScopedLock guard(m_mapLock);
    const auto found = m_uses.find(&object);
    if (found == m_uses.end())
        return;
    found->second.erase({&record, &sender});
    if (found->second.empty())
        m_uses.erase(found);
}

CErrorPtr CNotifyServer::raise(const CObject& sender, const CString& eventName, const CEventArgs& args, EPost post)
{
    CNotifyRecord* const record = findRecord(eventName);
    if (record == nullptr)
        return {};
    // A handler may take the whole tree down, this server with it.
    const std::shared_ptr<CNotifyServer> keptAlive = shared_from_this();
    const platform::CScopedLock guard(record->lock());
    const CNotifyRecord::Listeners* const listeners = record->listeners(sender);
    if (listeners == nullptr)
        return {};

    const CString senderName = sender.fullName();
    CEventArgs delivered = args;
    delivered.set("sender", senderName);
    delivered.set("event-name", eventName);
    CNotifyRecord::CFrame frame(*record, sender);
    const std::uint64_t thread = platform::CSystemThread::currentId();
    const CNotifyRecord::Listeners present = *listeners;
    for (const CNotifyRecord::CListener& listener : present) {
        const CObject* const owner = listener.object->threadOwner();
        if (owner == nullptr)
            continue;
        if (post == EPost::whenForeign && owner->ownerThread() == thread) {
            frame.calls.append(listener);
        } else if (owner->eventBridge() != nullptr) {
            CEventArgs posted = delivered;
            posted.set("listener", listener.object->fullName());
            posted.set("listener-id", listener.object->objectId());
            posted.set("listener-proc", listener.handler->name);
            if (CErrorPtr error = owner->eventBridge()->post(posted))
                return std::move(error).traced(__FILE__, __LINE__, senderName);
        }
    }
    // By position: a call may be knocked out, or all of them dropped, while an earlier one runs.
    for (std::size_t index = 0; index < frame.calls.size(); ++index) {
        const CNotifyRecord::CListener call = frame.calls[index];
        if (call.object == nullptr)
            continue;
        if (CErrorPtr error = call.handler->call(*call.object, delivered))
            return std::move(error).traced(__FILE__, __LINE__, senderName);
    }
    return {};
}

} // namespace qrb
