// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamPathTree.h"

namespace qrb {

/// Alias of one path. Remembers all targets it ever had, so that two definitions which turn one alias back and forth
/// take memory once, and a target stays readable for who is just looking at it. Thread: any.
class CAudioParamRename : public CAudioParamPathEntry {
public:
    CAudioParamRename(const CString& original, const CString& renamed);

    /// The target that counts from now on.
    void setTarget(const CString& renamed);
    /// Stays valid as long as the alias.
    [[nodiscard]] const CString& target() const { return m_target.load(std::memory_order_acquire)->path(); }

private:
    CAudioParamPathTree m_targets;
    std::atomic<const CAudioParamPathEntry*> m_target{nullptr};
};

} // namespace qrb
