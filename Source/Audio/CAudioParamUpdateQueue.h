// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamUpdateList.h"

#include <cstddef>
#include <cstdint>

namespace qrb {

/// Changes of all parameters that wait for the audio side, where changes of one parameter can be found and merged.
/// Guarded by its owner.
class CAudioParamUpdateQueue : public CCheckedObject {
public:
    /// From this many waiting records on, changes merge even while audio runs.
    static constexpr std::size_t kMergeCount = 4096;

    [[nodiscard]] std::size_t size() const { return m_list.size(); }

    /// Whether a change of the parameter with that anchor waits.
    [[nodiscard]] bool isWaiting(const CAudioParamQueueAnchor& anchor) const
    {
        return anchor.epoch == m_epoch && anchor.newest != nullptr;
    }

    void append(CAudioParamUpdateRecord* record);
    /// Merges into a waiting record of the same parameter and group where that gives the same result, else appends.
    /// Returns the record if it is not needed any more.
    [[nodiscard]] CAudioParamUpdateRecord* appendMerged(CAudioParamUpdateRecord* record);
    /// Appends all of `list`, in order. With `dropped`, waiting records of which a new one leaves nothing go there.
    void splice(CAudioParamUpdateList& list, CAudioParamUpdateList* dropped);
    /// Moves everything behind the records of `to`.
    void moveTo(CAudioParamUpdateList& to);

private:
    [[nodiscard]] CAudioParamUpdateRecord* newestOf(const CAudioParamUpdateRecord& record) const;
    void dropCovered(CAudioParamUpdateRecord& later, CAudioParamUpdateList& dropped);

    CAudioParamUpdateList m_list;
    std::uint64_t m_epoch = 1; ///< counts the fillings of the queue
};

} // namespace qrb
