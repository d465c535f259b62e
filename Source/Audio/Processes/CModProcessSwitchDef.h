// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessDefBase.h"

namespace qrb {

/// Definition of a switch: a table from a number to one of its child definitions.
class CModProcessSwitchDef : public CAudioProcessDefBase {
public:
    struct CEntry {
        int number;
        const CAudioProcessDefBase* definition;
    };

    [[nodiscard]] CErrorPtr init() override;
    [[nodiscard]] CErrorPtr initChilds() override;
    [[nodiscard]] std::unique_ptr<CAudioProcessBase> createProcess() const override;
    void visitInner(const std::function<void(const CAudioInnerProcess&)>& visit) const override;

    /// The entry of a number, or else that of `def-index`; null where there is neither.
    [[nodiscard]] const CEntry* find(int number) const;
    /// Name of an entry's instances, below the switch. Each entry has its own, since what one declares of a parameter
    /// does not hold for the others; remaps reach all of them under the name without the number.
    [[nodiscard]] CString childName(const CEntry& entry) const;
    /// Whether there is a copy for each split above that of the node's own element.
    [[nodiscard]] bool isAllpassBank() const { return m_isAllpassBank; }

private:
    CString m_childName;
    int m_defaultNumber = 0;
    bool m_isAllpassBank = false;
    CMap<int, CString> m_paths;
    CArray<CEntry, 2> m_entries; ///< by ascending number
};

} // namespace qrb
