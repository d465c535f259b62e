// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CObject.h"

#include <span>

namespace qrb {

/// Declared link between two ports of a process.
class CAudioProcessLinkDef : public CObject {
public:
    /// "name" or "name/port"; the name "*" is the process itself.
    struct CEnd {
        CString process;
        int port = 0;

        [[nodiscard]] bool isOuter() const { return process == "*"; }
    };

    [[nodiscard]] CErrorPtr init() override;

    [[nodiscard]] const CEnd& source() const { return m_source; }
    [[nodiscard]] const CEnd& destination() const { return m_destination; }
    /// State under which the link belongs, -1 for always.
    [[nodiscard]] int stateId() const { return m_stateId; }
    /// The link is off while any of these states holds.
    [[nodiscard]] std::span<const int> bypassStateIds() const { return m_bypassStateIds.span(); }

private:
    CEnd m_source;
    CEnd m_destination;
    int m_stateId = -1;
    CArray<int> m_bypassStateIds;
};

} // namespace qrb
