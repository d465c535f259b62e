// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamUpdateRecord.h"

#include <cstddef>
#include <cstdint>

namespace qrb {

class CAudioParamUpdatePool;

/// Changes in the order in which they reach the audio side. Serves as the collector's queue, whose owner guards it, and
/// as a caller's list of deferred changes, which reaches the modules in one block.
class CAudioParamUpdateQueue : public CCheckedObject {
public:
    /// From this many waiting records on, changes merge even while audio runs.
    static constexpr std::size_t kMergeCount = 4096;

    explicit CAudioParamUpdateQueue(CAudioParamUpdatePool& pool) : m_pool(pool) {}
    ~CAudioParamUpdateQueue() override;
    CAudioParamUpdateQueue(const CAudioParamUpdateQueue&) = delete;
    CAudioParamUpdateQueue& operator=(const CAudioParamUpdateQueue&) = delete;

    [[nodiscard]] bool empty() const { return m_first == nullptr; }
    [[nodiscard]] std::size_t size() const { return m_count; }

    void append(CAudioParamUpdateRecord* record);
    /// Merges into a waiting record of the same parameter and group where that gives the same result, else appends.
    void appendMerged(CAudioParamUpdateRecord* record);
    /// Appends all of `list`, in order. With `isSuperseding` waiting records that a new one covers are dropped first.
    void splice(CAudioParamUpdateQueue& list, bool isSuperseding);
    /// Moves all records behind those of `to`, which keeps no chains of parameters.
    void moveTo(CAudioParamUpdateQueue& to);
    /// Takes the first record out; null at the end.
    [[nodiscard]] CAudioParamUpdateRecord* takeFirst();
    /// Gives all records back to the pool, unapplied.
    void clear();

private:
    [[nodiscard]] CAudioParamUpdateRecord* newestOf(const CAudioParamUpdateRecord& record) const;
    void link(CAudioParamUpdateRecord* record);
    void unlink(CAudioParamUpdateRecord* record);
    void dropCovered(const CAudioParamUpdateRecord& later);

    CAudioParamUpdatePool& m_pool;
    CAudioParamUpdateRecord* m_first = nullptr;
    CAudioParamUpdateRecord* m_last = nullptr;
    std::size_t m_count = 0;
    std::uint64_t m_epoch = 1;
};

} // namespace qrb
