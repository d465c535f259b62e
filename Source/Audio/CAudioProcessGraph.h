// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioBypassStateRec.h"
#include "Audio/CAudioProcessItem.h"
#include "Core/CArray.h"
#include "Core/CQrbStdAllocator.h"

#include <algorithm>
#include <memory>

namespace qrb {

/// The children of a process, the links among them and the states that decide on both.
struct CAudioProcessGraph {
    CMap<CString, CAudioProcessItem*> itemsByName;
    CArray<std::unique_ptr<CAudioProcessItem>> items; ///< in order of declaration
    CAudioProcessLinkList outputLinks;
    CArray<std::unique_ptr<CAudioBypassStateRec>> states;

    [[nodiscard]] CAudioProcessItem* findItem(const CString& name) const
    {
        const auto found = itemsByName.find(name);
        return found == itemsByName.end() ? nullptr : found->second;
    }
    /// Whether a state of that id holds.
    [[nodiscard]] bool holdsState(int id) const;
};

} // namespace qrb
