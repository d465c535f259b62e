// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Presets/CAudioParamUndoSnapshot.h"
#include "Core/CQrbStdAllocator.h"
#include "Core/CString.h"

namespace qrb {

/// One gesture: a label, and what every group that it changed was before and is after. Belongs to who made the gesture
/// until it is submitted. Thread: any, with the instance's parameters held while it is filled.
class CAudioParamUndoEntry : public CCheckedObject {
public:
    static constexpr std::int32_t kNoMergeTag = -1;

    using CSnapshots = CArray<CAudioParamUndoSnapshot, 1>;

    CAudioParamUndoEntry() = default;
    explicit CAudioParamUndoEntry(const CString& entryLabel) : label(entryLabel) {}

    /// Notes a group of a parameter as it is before a change. A group is noted once: a later change leaves that alone.
    /// With `isEmpty` the group counts as not there.
    void captureBefore(const CString& name, std::int32_t group, const CAudioParamStorage& storage, bool isEmpty);
    /// Notes what a change has left of a group that has been noted before it.
    void captureAfter(const CString& name, std::int32_t group, const CAudioParamStorage& storage, bool isEmpty);

    /// Whether anything was noted.
    [[nodiscard]] bool empty() const { return m_params.empty(); }
    /// Parameters of which a group was noted.
    [[nodiscard]] std::size_t paramCount() const { return m_params.size(); }
    /// What was noted, by the paths of parameters.
    [[nodiscard]] const CMap<CString, CSnapshots>& params() const { return m_params; }

    /// Takes the end of a later gesture that changed the same groups in the same way, so that both are one; false, with
    /// nothing changed, if the two do not fit.
    bool merge(CAudioParamUndoEntry& later);

    CString label;
    bool isMerging = false;              ///< may become one with its neighbour of equal tag
    std::int32_t mergeTag = kNoMergeTag; ///< what tells the gestures apart that merge

private:
    [[nodiscard]] CAudioParamUndoSnapshot* find(const CString& name, std::int32_t group);
    [[nodiscard]] bool canMerge(const CAudioParamUndoEntry& later) const;

    CMap<CString, CSnapshots> m_params;
};

} // namespace qrb
