// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CObject.h"

#include "Core/CAttrBindings.h"
#include "Core/CCreatorTable.h"
#include "Core/CNotifyServer.h"
#include "Core/CNotifyServerRegistry.h"
#include "Core/CObjectClassInfo.h"
#include "Core/CObjectTemplateRecord.h"
#include "Core/CProcessState.h"
#include "Core/CTextRecord.h"

#include <utility>

namespace qrb {

CObject::CObject() = default;

CObject::~CObject()
{
    while (!m_childs.empty())
        m_childs.back()->release();
    if (m_ownNotifyServer != nullptr) {
        if (CProcessState* const state = processStateOrNull())
            state->notifyServers->remove(m_ownNotifyServer->number());
    }
}

void CObject::declare(CObjectClassInfo& info)
{
    info.event<&CObject::releaseChildBridged>("release-child-bridged");
}

CErrorPtr CObject::init()
{
    if (m_template != nullptr)
        QRB_TRY(loadTemplatePart(ENodePart::attrs));
    QRB_TRY(applyAttrs(m_overrides));
    // They were set before, so that the template's expressions see them, and may have been overwritten since.
    if (m_template != nullptr || m_overrides != nullptr)
        QRB_TRY(applyAttrs(m_callerAttrs));
    m_state = EObjectState::initDone;
    return {};
}

CErrorPtr CObject::initAttrs()
{
    QRB_TRY(flushSetters());
    m_state = EObjectState::attrsFlushed;
    if (m_template != nullptr)
        QRB_TRY(loadTemplatePart(ENodePart::childs));
    return {};
}

CErrorPtr CObject::initChilds()
{
    m_state = EObjectState::childsReached;
    if (m_root == processState().sharedObject)
        makeReadOnly();
    return {};
}

CErrorPtr CObject::onChildAdded(CObject&)
{
    return {};
}

void CObject::removeChild(CObject& child)
{
    // The whole of what it was entered under: a name with a "." in it is more than what stands behind the last one.
    const CString entered = child.fullName().substr(fullName().empty() ? 0 : fullName().length() + 1);
    // Trees are taken down from the last child to the first, so the search begins at the end.
    for (std::size_t index = m_childs.size(); index-- > 0;) {
        if (m_childs[index] == &child) {
            m_childs.removeAt(index);
            break;
        }
    }
    m_childNames.remove(entered, child);
    if (child.m_templateRecord != nullptr) {
        const auto found = m_templates.find(child.getName());
        if (found != m_templates.end() && found->second == &child)
            m_templates.erase(found);
    }
    child.m_parent = nullptr;
}

void CObject::unlink()
{
    if (m_notifyServer != nullptr)
        m_notifyServer->removeObject(*this);
    for (const std::uint32_t number : m_listenedServers) {
        if (const auto server = processState().notifyServers->find(number))
            server->removeObject(*this);
    }
    m_listenedServers.clear();
    if (m_bindings != nullptr)
        m_bindings->unlink(*this);
}

void CObject::detach()
{
    if (m_parent != nullptr)
        m_parent->removeChild(*this);
}

void CObject::release()
{
    unlink();
    while (!m_childs.empty())
        m_childs.back()->release();
    detach();
    delete this;
}

CString CObject::getName() const
{
    const CString& name = fullName();
    const std::size_t dot = name.rfind(u'.');
    return dot == CString::npos ? name : name.substr(dot + 1);
}

const CString& CObject::fullName() const
{
    return m_fullName.text();
}

void CObject::setRoot(std::shared_ptr<CNotifyServer> server)
{
    m_root = this;
    m_ownNotifyServer = std::move(server);
    m_notifyServer = m_ownNotifyServer.get();
    if (m_notifyServer != nullptr)
        m_objectId = m_notifyServer->takeObjectId();
    m_classInfo = &processState().creators->baseInfo();
    setFullName(CString());
}

} // namespace qrb
