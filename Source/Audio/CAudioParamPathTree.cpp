// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamPathTree.h"

namespace qrb {

static constexpr int kLevelBits = 2;
static constexpr int kLevelShift = 32 - kLevelBits;

CAudioParamPathTree::~CAudioParamPathTree()
{
    for (CAudioParamPathEntry* entry = newest(); entry != nullptr;) {
        const std::unique_ptr<CAudioParamPathEntry> gone(entry);
        entry = gone->m_older;
    }
}

CAudioParamPathEntry* CAudioParamPathTree::find(const CString& path) const
{
    const std::uint32_t hash = path.hash();
    std::uint32_t bits = hash;
    CAudioParamPathEntry* entry = m_root.load(std::memory_order_acquire);
    while (entry != nullptr && !entry->isAt(path, hash)) {
        entry = entry->m_below[bits >> kLevelShift].load(std::memory_order_acquire);
        bits <<= kLevelBits;
    }
    return entry;
}

CAudioParamPathEntry& CAudioParamPathTree::add(std::unique_ptr<CAudioParamPathEntry> entry)
{
    std::atomic<CAudioParamPathEntry*>* slot = &m_root;
    std::uint32_t bits = entry->m_hash;
    for (;;) {
        CAudioParamPathEntry* present = nullptr;
        if (slot->compare_exchange_strong(present, entry.get(), std::memory_order_acq_rel, std::memory_order_acquire))
            break;
        if (present->isAt(entry->m_path, entry->m_hash))
            return *present;
        // Below the last bits of the hash, entries of one hash stand in a row.
        slot = &present->m_below[bits >> kLevelShift];
        bits <<= kLevelBits;
    }
    entry->m_older = m_newest.load(std::memory_order_relaxed);
    while (!m_newest.compare_exchange_weak(entry->m_older, entry.get(), std::memory_order_release,
                                           std::memory_order_relaxed)) {
    }
    return *entry.release();
}

} // namespace qrb
