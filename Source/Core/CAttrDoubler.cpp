// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CAttrDoubler.h"

#include "Core/CObjectClassInfo.h"
#include "Core/CTextSplit.h"

namespace qrb {

void CAttrDoubler::declare(CObjectClassInfo& info)
{
    CObject::declare(info);
    info.attr<&CAttrDoubler::apply>("value");
}

CErrorPtr CAttrDoubler::init()
{
    QRB_TRY(CObject::init());
    m_targetPaths = split(getAttrString("target"), u' ', EEmpty::drop);
    if (m_targetPaths.empty())
        return QRB_ERROR("@qrbstr_CAttrDoubler_init_NoTargets No target objects specified.");
    for (const CString& path : m_targetPaths) {
        if (findObject(path) == nullptr)
            return QRB_ERROR("@qrbstr_CAttrDoubler_init_TargetNotFound Target object '%1' not found.", path);
    }
    m_attr = getAttrString("attr");
    return nullptr;
}

CErrorPtr CAttrDoubler::apply(const CObjectAttr& value)
{
    const CString text = value.toString();
    for (const CString& path : m_targetPaths) {
        // The value has been expanded on its way into this object, so it is plain text now.
        if (CObject* const target = findObject(path))
            QRB_TRY(target->setAttrText(m_attr, text, ESetter::now));
    }
    return nullptr;
}

} // namespace qrb
