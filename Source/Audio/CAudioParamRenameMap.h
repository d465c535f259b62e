// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamPathTree.h"
#include "Core/CCheckedObject.h"
#include "Core/CString.h"

namespace qrb {

/// Aliases of parameter paths. Takes no lock, and memory only for a pair that is new. Thread: any.
class CAudioParamRenameMap : public CCheckedObject {
public:
    /// Steps after which a chain of aliases counts as a ring and ends where it is.
    static constexpr int kMaxSteps = 64;

    /// Enters an alias; a later one for the same path replaces it, one to the path itself does nothing.
    void add(const CString& original, const CString& renamed);
    /// Makes every path that begins with `twin` an alias of the one that begins with `prefix` instead, where that one
    /// is an alias itself. Aliases that the twin has already stay.
    void addTwins(const CString& prefix, const CString& twin);
    /// The path behind all aliases: `path` itself, or a text that stays as long as the map.
    [[nodiscard]] const CString& resolve(const CString& path) const;

private:
    CAudioParamPathTree m_renames;
};

} // namespace qrb
