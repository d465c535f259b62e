// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessComposite.h"
#include "Audio/CAudioProcessGraph.h"

namespace qrb {

class CAudioProcessDef;

/// Node with declared children, wired by its definition and by the bypass states that hold. A change of a state
/// rewires at the start of the next block; nodes come to life when a link first reaches them and go with the last.
class CAudioProcess : public CAudioProcessComposite {
public:
    CAudioProcess();
    ~CAudioProcess() override;

    [[nodiscard]] CErrorPtr init() override;
    void update() override;

    /// Adds a child; its node is made when a link reaches it.
    [[nodiscard]] CErrorPtr addProcess(const CAudioProcessDefBase& definition, const CString& name);
    /// Drops a child at the next rebuild.
    void removeProcess(const CString& name);
    /// The node of a child, or null while none exists.
    [[nodiscard]] CAudioProcessBase* findNode(const CString& name);

private:
    void initStates();
    [[nodiscard]] bool updateStates();
    void rewire();
    void applyLinks(CAudioProcessLinkList& links, CAudioProcessItem* destination);
    [[nodiscard]] bool createNode(CAudioProcessItem* item);
    void connectLink(const CAudioProcessLink& link, CAudioProcessItem* destination);
    void disconnectLink(const CAudioProcessLink& link, CAudioProcessItem* destination);
    void destroyUnused();
    void dropDisabled();

    const CAudioProcessDef* m_processDef = nullptr;
    CAudioProcessGraph m_graph;
    std::uint8_t m_statesDirty = 1;
    bool m_isRebuildDue = true;
    bool m_isCleanupDue = false;
};

} // namespace qrb
