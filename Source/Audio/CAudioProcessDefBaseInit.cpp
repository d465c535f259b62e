// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessDefBaseInit.h"

#include "Audio/CAudioParamAllocDef.h"
#include "Audio/CAudioParamDef.h"
#include "Audio/CAudioParamRemapDef.h"
#include "Audio/CAudioParamSharedStorage.h"
#include "Audio/ParamFilters/CAudioParamFilterDef.h"

namespace qrb {

CErrorPtr CAudioProcessDefBaseInit::initChilds()
{
    QRB_TRY(CObject::initChilds());
    for (const CObject* child : childs()) {
        sortChild(*child, ".");
        if (child->tag() == "core:object") {
            for (const CObject* member : child->childs()) {
                sortChild(*member, CString(".") + child->getName() + ".");
            }
        }
    }
    return nullptr;
}

void CAudioProcessDefBaseInit::sortChild(const CObject& child, const CString& prefix)
{
    if (const auto* alloc = dynamic_cast<const CAudioParamAllocDef*>(&child)) {
        m_paramAllocs.insert_or_assign(alloc->index(), alloc);
    } else if (const auto* remap = dynamic_cast<const CAudioParamRemapDef*>(&child)) {
        m_paramRemaps.append({prefix + child.getName(), remap});
    } else if (const auto* storage = dynamic_cast<const CAudioParamSharedStorage*>(&child)) {
        m_sharedStorages.append({prefix + child.getName(), storage});
    } else if (const auto* filter = dynamic_cast<const CAudioParamFilterDef*>(&child)) {
        m_paramFilters.append({prefix + child.getName(), filter});
    } else if (const auto* param = dynamic_cast<const CAudioParamDef*>(&child)) {
        m_params.append({prefix + child.getName(), param});
    }
}

} // namespace qrb
