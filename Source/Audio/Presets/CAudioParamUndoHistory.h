// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Presets/CAudioParamUndoEntry.h"

#include <memory>

namespace qrb {

/// Gestures in their order, and how many of them are applied. Belongs to one program or to the shadow of an A/B
/// comparison; not locked.
class CAudioParamUndoHistory : public CCheckedObject {
public:
    [[nodiscard]] std::int32_t count() const { return static_cast<std::int32_t>(m_entries.size()); }
    [[nodiscard]] std::int32_t position() const { return m_position; }
    [[nodiscard]] const CAudioParamUndoEntry& entry(std::int32_t index) const
    {
        return *m_entries[static_cast<std::size_t>(index)];
    }

    /// Whether the gesture became one with the one before the position.
    bool merge(CAudioParamUndoEntry& entry);
    /// Cuts what could have been redone, drops the oldest of `maxCount` gestures, and appends.
    void append(std::unique_ptr<CAudioParamUndoEntry> entry, std::int32_t maxCount);
    void setPosition(std::int32_t position) { m_position = position; }

    [[nodiscard]] std::unique_ptr<CAudioParamUndoHistory> clone() const;

private:
    CArray<std::unique_ptr<CAudioParamUndoEntry>> m_entries;
    std::int32_t m_position = 0;
};

} // namespace qrb
