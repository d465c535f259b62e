// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Presets/CAudioParamUndoHistory.h"

#include <utility>

namespace qrb {

bool CAudioParamUndoHistory::merge(CAudioParamUndoEntry& entry)
{
    return m_position > 0 && m_entries[static_cast<std::size_t>(m_position) - 1]->merge(entry);
}

void CAudioParamUndoHistory::append(std::unique_ptr<CAudioParamUndoEntry> entry, std::int32_t maxCount)
{
    m_entries.resize(static_cast<std::size_t>(m_position));
    while (count() >= maxCount)
        m_entries.removeAt(0);
    m_entries.append(std::move(entry));
    m_position = count();
}

std::unique_ptr<CAudioParamUndoHistory> CAudioParamUndoHistory::clone() const
{
    auto copy = std::make_unique<CAudioParamUndoHistory>();
    for (const auto& entry : m_entries)
        copy->m_entries.append(std::make_unique<CAudioParamUndoEntry>(*entry));
    copy->m_position = m_position;
    return copy;
}

} // namespace qrb
