// SPDX-License-Identifier: GPL-3.0-or-later
// Events of an object and the threads they go to.
#include "Core/CLog.h"
#include "Core/CNotifyServer.h"
#include "Core/CObject.h"
#include "Core/CObjectClassInfo.h"
#include "Core/CObjectEventBridge.h"
#include "Platform/CSystemThread.h"

namespace qrb {

namespace {

const char* const kReleaseBridged = "release-child-bridged";

} // namespace

CErrorPtr CObject::runEvent(const CString& name)
{
    return runEvent(name, CEventArgs());
}

CErrorPtr CObject::runEvent(const CString& name, const CEventArgs& args)
{
    const CObjectEvent* const event = m_classInfo != nullptr ? m_classInfo->findEvent(name) : nullptr;
    if (event == nullptr)
        return QRB_ERROR("@qrbstr_CObject_runEvent_UnknownEvent Unknown event '%1'.", name);
    // The handler may have released this object, so nothing of it is touched afterwards.
    return event->call(*this, args);
}

void CObject::listenObject(CObject& sender, const CString& eventName, const CString& handlerName)
{
    const CObjectEvent* const handler = m_classInfo != nullptr ? m_classInfo->findEvent(handlerName) : nullptr;
    if (handler == nullptr) {
        logFormat("Event handler '%s' not found in listenObject().", handlerName.toUtf8().c_str());
        return;
    }
    CNotifyServer* const server = sender.m_notifyServer;
    if (server == nullptr)
        return;
    server->listen(sender, eventName, *this, *handler);
    if (server != m_notifyServer && !m_listenedServers.contains(server->number()))
        m_listenedServers.append(server->number());
}

void CObject::unlistenObject(CObject& sender, const CString& eventName)
{
    if (sender.m_notifyServer != nullptr)
        sender.m_notifyServer->unlisten(sender, eventName, *this);
}

CErrorPtr CObject::raiseEvent(const CString& eventName, const CEventArgs& args, EPost post)
{
    if (m_notifyServer == nullptr)
        return {};
    return m_notifyServer->raise(*this, eventName, args, post);
}

void CObject::setEventBridge(CObjectEventBridge* bridge)
{
    m_eventBridge = bridge;
    m_ownerThread = platform::CSystemThread::currentId();
    m_inheritsBridge = false;
}

const CObject* CObject::threadOwner() const
{
    const CObject* object = this;
    while (object != nullptr && object->m_inheritsBridge)
        object = object->m_parent;
    return object;
}

CErrorPtr CObject::releaseBridged()
{
    const CObject* const owner = threadOwner();
    if (owner == nullptr || owner->m_eventBridge == nullptr)
        return QRB_ERROR("@qrbstr_CObject_releaseBridged_NoBridge No event bridge leads to the thread of the object.");
    CEventArgs args;
    args.set("sender", fullName());
    args.set("sender-id", objectId());
    args.set("event-name", kReleaseBridged);
    args.set("listener", owner->fullName());
    args.set("listener-id", owner->objectId());
    args.set("listener-proc", kReleaseBridged);
    QRB_TRY(owner->m_eventBridge->post(args));
    return {};
}

CErrorPtr CObject::releaseChildBridged(const CEventArgs& args)
{
    CObject* const object = findObject(args.getString("sender"));
    // Another object may have the name by now.
    if (object != nullptr && (!args.has("sender-id") || args.getInt("sender-id") == object->objectId()))
        object->release();
    return {};
}

} // namespace qrb
