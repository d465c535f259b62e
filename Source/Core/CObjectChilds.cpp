// SPDX-License-Identifier: GPL-3.0-or-later
// Creation of children, names, lookup.
#include "Core/CCreatorTable.h"
#include "Core/CLog.h"
#include "Core/CNotifyServer.h"
#include "Core/CObject.h"
#include "Core/CObjectClassInfo.h"
#include "Core/CObjectPath.h"
#include "Core/CObjectTemplateRecord.h"
#include "Core/CProcessState.h"
#include "Core/CTextRecord.h"

#include <memory>

namespace qrb {

CErrorPtr CObject::createChild(CObject*& out, const CString& tag, const CString& name, EFromTemplate fromTemplate)
{
    out = nullptr;
    if (m_isReadOnly)
        return QRB_ERROR("@qrbstr_CObject_addChild_ReadOnly Error adding child to read-only object.");
    const CObject* const stored = fromTemplate == EFromTemplate::yes ? findTemplate(tag) : nullptr;
    const CString& classTag = stored != nullptr ? stored->m_templateRecord->classTag : tag;

    const CCreatorTable& creators = *processState().creators;
    const CCreatorTable::CCreator* const creator = creators.find(classTag);
    std::unique_ptr<CObject> child(creator != nullptr ? creator->create() : new CObject);
    child->m_classInfo = creator != nullptr ? creator->classInfo.get() : &creators.baseInfo();
    child->m_template = stored;
    if (creator == nullptr && !(classTag == "template") && !(classTag == "content"))
        logFormat("Creating CObject '%s' (tag '%s')", name.toUtf8().c_str(), classTag.toUtf8().c_str());
    QRB_TRY(linkChild(*child, classTag, name));
    CObject& linked = *child.release();
    linked.applyClassDefaults();
    if (CErrorPtr error = onChildAdded(linked)) {
        error->addTrace(__FILE__, __LINE__, fullName());
        linked.release();
        return error;
    }
    out = &linked;
    return {};
}

CErrorPtr CObject::linkChild(CObject& child, const CString& tag, const CString& name)
{
    if (m_depth >= kMaxDepth)
        return QRB_ERROR("@qrbstr_CObject_createChild_TooDeep Objects are nested too deep (child '%1').", name);
    const std::size_t room = name.length() + 16; // a new index may be added
    if (fullName().length() + room > kMaxFullNameLength)
        return QRB_ERROR("@qrbstr_CObject_createChild_NameTooLong The name of a child is too long (tag '%1').", tag);

    child.m_parent = this;
    child.m_root = m_root;
    child.m_depth = m_depth + 1;
    child.m_notifyServer = m_notifyServer;
    if (m_notifyServer != nullptr)
        child.m_objectId = m_notifyServer->takeObjectId();
    child.m_tag = tag;
    child.m_isShortcutChild = m_tag == "core:shortcut";

    m_childs.append(&child);
    CString got = m_childNames.add(name, child);
    if (fullName().empty()) {
        child.setFullName(std::move(got));
        return {};
    }
    CString full;
    full.reserve(fullName().length() + 1 + got.length());
    full += fullName();
    full.append(u'.');
    full += got;
    child.setFullName(std::move(full));
    return {};
}

CErrorPtr CObject::createFromTag(CObject*& out, const CString& tag, const CString& name,
                                 ERequireTemplate requireTemplate)
{
    if (requireTemplate == ERequireTemplate::yes && !hasTemplate(tag))
        return QRB_ERROR("@qrbstr_CObject_createChild_NoTemplate Run-time template '%1' does not exist.", tag);
    QRB_TRY(createChild(out, tag, name, EFromTemplate::yes));
    return {};
}

CErrorPtr CObject::finishChild(CObject& child, const CAttrOverrides* overrides, const CAttrOverrides* attrs)
{
    child.m_overrides = overrides;
    child.m_callerAttrs = attrs;
    CErrorPtr error = child.applyAttrs(attrs);
    if (!error)
        error = child.init();
    if (!error)
        error = child.initAttrs();
    if (!error)
        error = child.initChilds();
    child.m_overrides = nullptr;
    child.m_callerAttrs = nullptr;
    if (error) {
        error->addTrace(__FILE__, __LINE__, fullName());
        child.release();
        return error;
    }
    child.m_state = EObjectState::built;
    return {};
}

CErrorPtr CObject::wrongClass(CObject& child, const CString& tag, const CString& name)
{
    child.release();
    return QRB_ERROR("@qrbstr_CObject_createChild_InvalidObjectClass Object of invalid class created (child tag '%1', "
                     "child name '%2').",
                     tag, name);
}

const CObject* CObject::findTemplate(const CString& name) const
{
    for (const CObject* holder = this; holder != nullptr; holder = holder->m_parent) {
        const auto found = holder->m_templates.find(name);
        if (found != holder->m_templates.end())
            return found->second;
    }
    const CObject* const shared = processState().sharedObject;
    if (shared == nullptr || shared == m_root)
        return nullptr;
    const auto found = shared->m_templates.find(name);
    return found != shared->m_templates.end() ? found->second : nullptr;
}

bool CObject::hasTemplate(const CString& name) const
{
    return findTemplate(name) != nullptr;
}

CObject* CObject::findObject(const CString& path)
{
    return qrb::findObject(*this, path);
}

const CObject* CObject::findObject(const CString& path) const
{
    return qrb::findObject(const_cast<CObject&>(*this), path);
}

CErrorPtr CObject::findFailed(const CString& path, bool isFound) const
{
    const CString& name = fullName();
    return isFound
               ? QRB_ERROR("@qrbstr_CObject_findObjectChecked_CastError Incompatible type of object '%1' ('%2')", path,
                           name)
               : QRB_ERROR("@qrbstr_CObject_findObjectChecked_FindError Unable to find object '%1' ('%2')", path, name);
}

CErrorPtr CObject::findByAttrFailed(const CString& attrName, const CString& path, const CObject* found) const
{
    if (path.empty())
        return QRB_ERROR("@qrbstr_CObject_findObjectByAttr_AttrEmpty Object name attribute '%1' cannot be empty.",
                         attrName);
    if (found == nullptr)
        return QRB_ERROR("@qrbstr_CObject_findObjectByAttr_FindError Name attribute '%1' refers to a non-existent "
                         "object '%2' ('%3')",
                         attrName, path, resolvedPath(const_cast<CObject&>(*this), path));
    return QRB_ERROR("@qrbstr_CObject_findObjectByAttr_CastError Name attribute '%1' refers to object '%2' ('%3') of "
                     "incompatible type.",
                     attrName, path, found->fullName());
}

} // namespace qrb
