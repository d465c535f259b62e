// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessDefBase.h"

namespace qrb {

class CAudioProcessBypassStateDef;
class CAudioProcessLinkDef;

/// Definition of a process that consists of other processes: children, links and bypass states.
class CAudioProcessDef : public CAudioProcessDefBase {
public:
    [[nodiscard]] CErrorPtr init() override;
    [[nodiscard]] CErrorPtr initChilds() override;
    [[nodiscard]] std::unique_ptr<CAudioProcessBase> createProcess() const override;
    void visitInner(const std::function<void(const CAudioInnerProcess&)>& visit) const override;

    [[nodiscard]] bool isAutoLinks() const { return m_isAutoLinks; }
    /// In order of declaration.
    [[nodiscard]] std::span<const CAudioProcessDefBase* const> processes() const { return m_processes.span(); }
    /// By state id, -1 for links that always count; in order of declaration within one.
    [[nodiscard]] const CMap<int, CArray<const CAudioProcessLinkDef*>>& links() const { return m_links; }
    [[nodiscard]] std::span<const CAudioProcessBypassStateDef* const> bypassStates() const
    {
        return m_bypassStates.span();
    }

private:
    bool m_isAutoLinks = false;
    CArray<const CAudioProcessDefBase*> m_processes;
    CMap<int, CArray<const CAudioProcessLinkDef*>> m_links;
    CArray<const CAudioProcessBypassStateDef*> m_bypassStates;
};

} // namespace qrb
