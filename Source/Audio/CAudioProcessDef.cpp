// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessDef.h"

#include "Audio/CAudioProcess.h"
#include "Audio/CAudioProcessBypassStateDef.h"
#include "Audio/CAudioProcessLinkDef.h"

namespace qrb {

CErrorPtr CAudioProcessDef::init()
{
    QRB_TRY(CAudioProcessDefBase::init());
    m_isAutoLinks = getAttrBool("is-auto-links");
    return nullptr;
}

CErrorPtr CAudioProcessDef::initChilds()
{
    QRB_TRY(CAudioProcessDefBase::initChilds());
    for (const CObject* child : childs()) {
        if (const auto* process = dynamic_cast<const CAudioProcessDefBase*>(child)) {
            m_processes.append(process);
        } else if (const auto* link = dynamic_cast<const CAudioProcessLinkDef*>(child)) {
            m_links[link->stateId()].append(link);
        } else if (const auto* state = dynamic_cast<const CAudioProcessBypassStateDef*>(child)) {
            m_bypassStates.append(state);
        }
    }
    return nullptr;
}

void CAudioProcessDef::visitInner(const std::function<void(const CAudioInnerProcess&)>& visit) const
{
    for (const CAudioProcessDefBase* process : m_processes) {
        if (!process->isPrototype()) {
            visit({*process, process->getName()});
        }
    }
}

std::unique_ptr<CAudioProcessBase> CAudioProcessDef::createProcess() const
{
    return std::make_unique<CAudioProcess>();
}

} // namespace qrb
