// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessDefBase.h"

namespace qrb {

CErrorPtr CAudioProcessDefBase::init()
{
    QRB_TRY(CAudioProcessDefBaseInit::init());
    m_multibandFreqParam = getAttrString("multiband-freq-param");
    m_multibandCountParam = getAttrString("multiband-count-param");
    m_stackParam = getAttrString("stack-param");
    m_isStacked = getAttrBool("is-stacked");
    m_isSmoothUpdate = getAttrBool("is-smooth-update");
    m_stackIndexShift = getAttrInt("stack-index-shift");
    if (m_stackIndexShift < 0) {
        return QRB_ERROR("@qrbstr_CAudioProcessDefBase_init_InvalidStackIndexShift Invalid stack index shift value "
                         "'%1' specified.",
                         m_stackIndexShift);
    }
    m_isMultiband = getAttrBool("is-multiband");
    m_isTerminalWhole = getAttrBool("is-terminal-whole");
    m_isChannelStack = getAttrBool("is-channel-stack");
    m_isPrototype = getAttrBool("is-prototype");
    m_isOutOfOrder = getAttrBool("is-outoforder");
    m_bypassStateId = getAttrInt("bypass-state-id", kNoState);
    m_isCompInput = getAttrBool("is-comp-input");
    const CString combo = getAttrString("input-combo-mode");
    m_inputCombo = combo == "avg" ? EInputCombo::average : combo == "max" ? EInputCombo::maximum : EInputCombo::sum;
    return nullptr;
}

void CAudioProcessDefBase::visitInner(const std::function<void(const CAudioInnerProcess&)>&) const {}

CErrorPtr CAudioProcessDefBase::findProcess(const CString& path, const CAudioProcessDefBase*& out) const
{
    const CObject* found = findObject(path);
    out = dynamic_cast<const CAudioProcessDefBase*>(found);
    if (out != nullptr) {
        return nullptr;
    }
    return found != nullptr
               ? QRB_ERROR("@qrbstr_CObject_findObjectChecked_CastError Incompatible type of object '%1' ('%2')", path,
                           fullName())
               : QRB_ERROR("@qrbstr_CObject_findObjectChecked_FindError Unable to find object '%1' ('%2')", path,
                           fullName());
}

} // namespace qrb
