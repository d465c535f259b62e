// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamPathEntry.h"

#include <atomic>
#include <memory>

namespace qrb {

/// Entries by their path, which only join and live as long as the tree. There is no lock: the audio thread looks up and
/// enters beside any other thread and waits for none. Each entry is a node of the tree itself, placed by the bits of
/// its path's hash, so nothing is ever moved to make room.
///
/// Thread: any.
class CAudioParamPathTree : public CCheckedObject {
public:
    CAudioParamPathTree() = default;
    ~CAudioParamPathTree() override;
    CAudioParamPathTree(const CAudioParamPathTree&) = delete;
    CAudioParamPathTree& operator=(const CAudioParamPathTree&) = delete;

    /// Null for an unknown path.
    [[nodiscard]] CAudioParamPathEntry* find(const CString& path) const;
    /// Enters an entry and returns it; if its path has one already, that one is returned and the new one dropped.
    CAudioParamPathEntry& add(std::unique_ptr<CAudioParamPathEntry> entry);

    /// All entries, the newest first.
    [[nodiscard]] CAudioParamPathEntry* newest() const { return m_newest.load(std::memory_order_acquire); }
    [[nodiscard]] static CAudioParamPathEntry* older(const CAudioParamPathEntry& entry) { return entry.m_older; }

private:
    std::atomic<CAudioParamPathEntry*> m_root{nullptr};
    std::atomic<CAudioParamPathEntry*> m_newest{nullptr};
};

} // namespace qrb
