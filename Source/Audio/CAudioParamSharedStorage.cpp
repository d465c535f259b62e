// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamSharedStorage.h"

#include "Core/CAppData.h"

namespace qrb {

void CAudioParamSharedStorage::declare(CObjectClassInfo& info)
{
    CObject::declare(info);
}

CErrorPtr CAudioParamSharedStorage::init()
{
    QRB_TRY(CObject::init());
    m_paramName = getAttrString("param").trimmed();
    if (m_paramName.empty())
        return QRB_ERROR("@qrbstr_CAudioParamSharedStorage_init_Param Invalid parameter name specified.");
    m_dataName = getAttrString("data-name");
    if (m_dataName.empty())
        return QRB_ERROR("@qrbstr_CAudioParamSharedStorage_init_DataName Invalid shared data name specified.");
    const CString type = getAttrString("storage-type");
    m_storage = CAppData::findScope(type);
    if (m_storage == nullptr)
        return QRB_ERROR("@qrbstr_CAudioParamSharedStorage_init_StorageType Invalid storage type \"%1\" specified.",
                         type);
    return {};
}

} // namespace qrb
