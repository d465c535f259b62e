// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CExternalEventQueue.h"

#include <algorithm>

namespace qrb {

namespace {

constexpr std::size_t kReadyCount = 1024; // beyond that the audio thread asks the library's allocator

} // namespace

CExternalEventQueue::CExternalEventQueue()
{
    m_entries.reserve(kReadyCount);
}

void CExternalEventQueue::add(const CExternalEvent& event)
{
    m_entries.append({event, static_cast<std::uint32_t>(m_entries.size())});
}

void CExternalEventQueue::beginBlock(int sampleCount)
{
    m_readPosition = 0;
    for (CEntry& entry : m_entries)
        entry.event.offset = std::clamp(entry.event.offset, 0, std::max(0, sampleCount - 1));
    // std::stable_sort would take memory; the order of arrival does the same.
    std::sort(m_entries.begin(), m_entries.end(), [](const CEntry& a, const CEntry& b) {
        return a.event.offset != b.event.offset ? a.event.offset < b.event.offset : a.order < b.order;
    });
}

const CExternalEvent* CExternalEventQueue::due(int position) const
{
    if (m_readPosition >= m_entries.size() || m_entries[m_readPosition].event.offset > position)
        return nullptr;
    return &m_entries[m_readPosition].event;
}

int CExternalEventQueue::distance(int position, int limit) const
{
    for (std::size_t i = m_readPosition; i < m_entries.size(); ++i) {
        const int offset = m_entries[i].event.offset;
        if (offset > position)
            return std::min(limit, offset - position);
    }
    return limit;
}

void CExternalEventQueue::endBlock()
{
    m_entries.removeAt(0, m_readPosition);
    m_readPosition = 0;
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        m_entries[i].event.offset = 0;
        m_entries[i].order = static_cast<std::uint32_t>(i);
    }
}

} // namespace qrb
