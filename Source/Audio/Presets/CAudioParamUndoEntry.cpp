// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Presets/CAudioParamUndoEntry.h"

#include "Audio/CAudioParamStorage.h"

#include <algorithm>
#include <utility>

namespace qrb {

CAudioParamUndoSnapshot* CAudioParamUndoEntry::find(const CString& name, std::int32_t group)
{
    const auto known = m_params.find(name);
    if (known == m_params.end())
        return nullptr;
    for (CAudioParamUndoSnapshot& snapshot : known->second)
        if (snapshot.group == group)
            return &snapshot;
    return nullptr;
}

void CAudioParamUndoEntry::captureBefore(const CString& name, std::int32_t group, const CAudioParamStorage& storage,
                                         bool isEmpty)
{
    if (find(name, group) != nullptr)
        return;
    CAudioParamUndoSnapshot snapshot(group, storage.format());
    snapshot.take(EUndoState::before, storage, isEmpty);
    m_params[name].append(std::move(snapshot));
}

void CAudioParamUndoEntry::captureAfter(const CString& name, std::int32_t group, const CAudioParamStorage& storage,
                                        bool isEmpty)
{
    CAudioParamUndoSnapshot* const snapshot = find(name, group);
    if (snapshot != nullptr && snapshot->format == storage.format())
        snapshot->take(EUndoState::after, storage, isEmpty);
}

bool CAudioParamUndoEntry::canMerge(const CAudioParamUndoEntry& later) const
{
    const auto isAlike = [](const CSnapshots& mine, const CSnapshots& others) {
        return std::equal(mine.begin(), mine.end(), others.begin(), others.end(),
                          [](const auto& a, const auto& b) { return a.canMerge(b); });
    };
    return isMerging && later.isMerging && mergeTag == later.mergeTag &&
           std::equal(m_params.begin(), m_params.end(), later.m_params.begin(), later.m_params.end(),
                      [&](const auto& a, const auto& b) { return a.first == b.first && isAlike(a.second, b.second); });
}

bool CAudioParamUndoEntry::merge(CAudioParamUndoEntry& later)
{
    if (!canMerge(later))
        return false;
    auto from = later.m_params.begin();
    for (auto& [name, snapshots] : m_params) {
        for (std::size_t i = 0; i < snapshots.size(); ++i)
            snapshots[i].after = std::move(from->second[i].after);
        ++from;
    }
    return true;
}

} // namespace qrb
