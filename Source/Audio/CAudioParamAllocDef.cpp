// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamAllocDef.h"

namespace qrb {

void CAudioParamAllocDef::declare(CObjectClassInfo& info)
{
    CObject::declare(info);
}

CErrorPtr CAudioParamAllocDef::init()
{
    QRB_TRY(CObject::init());
    m_paramName = getAttrString("param-name").trimmed();
    if (m_paramName.empty())
        return QRB_ERROR("@qrbstr_CAudioParamAllocDef_init_ParamName Invalid parameter name specified.");
    m_index = getAttrInt("index", -1);
    if (m_index < 0)
        return QRB_ERROR("@qrbstr_CAudioParamAllocDef_init_Index Invalid parameter's '%1' index '%2' specified.",
                         m_paramName, getAttrString("index"));
    m_useAllGroups = getAttrBool("use-all-groups");
    m_useAllElements = getAttrBool("use-all-elements");
    m_isSmoothUpdate = getAttrBool("is-smooth-update");
    return {};
}

CString CAudioParamAllocDef::slotName() const
{
    const CString name = getName();
    return name.substr(0, name.find(u'#'));
}

} // namespace qrb
