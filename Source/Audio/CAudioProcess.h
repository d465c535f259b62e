// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioBypassStateRec.h"
#include "Audio/CAudioProcessComposite.h"
#include "Audio/CAudioProcessItem.h"
#include "Core/CQrbStdAllocator.h"

#include <memory>

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

protected:
    void processLines() override;

private:
    friend class CAudioProcessWiring;

    [[nodiscard]] bool updateStates();
    void rewire();
    [[nodiscard]] bool holdsState(int id) const;
    void applyLinks();
    void applyLinks(CAudioProcessLinkList& links, CAudioProcessItem* destination);
    [[nodiscard]] bool createNode(CAudioProcessItem& item);
    void connectLink(const CAudioProcessLink& link, CAudioProcessItem* destination);
    void disconnectLink(const CAudioProcessLink& link, CAudioProcessItem* destination);
    void destroyUnused();
    void dropDisabled();

    const CAudioProcessDef* m_processDef = nullptr;
    CMap<CString, CAudioProcessItem*> m_itemsByName;
    CArray<std::unique_ptr<CAudioProcessItem>> m_items;
    CAudioProcessLinkList m_outputLinks;
    CArray<std::unique_ptr<CAudioBypassStateRec>> m_states;
    CMap<int, CAudioBypassStateRec*> m_statesById;
    CAudioLineSource m_innerInput;
    CArray<CAudioLineInfo> m_innerLines;
    std::uint8_t m_statesDirty = 1;
    bool m_isRebuildDue = true;
    bool m_isCleanupDue = false;
};

} // namespace qrb
