// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CExternalEvent.h"
#include "Core/CArray.h"

#include <cstdint>

namespace qrb {

/// Events of the next block in the order in which they happen. Thread: that of the blocks.
class CExternalEventQueue {
public:
    CExternalEventQueue();

    void add(const CExternalEvent& event);
    [[nodiscard]] bool empty() const { return m_entries.size() == 0; }

    /// Limits all offsets to a block of `sampleCount` samples and orders the events by offset; those of equal offset
    /// keep the order in which they came.
    void beginBlock(int sampleCount);
    /// The next event at or before `position`, or null.
    [[nodiscard]] const CExternalEvent* due(int position) const;
    /// Goes on behind the event that due() gave.
    void advance() { ++m_readPosition; }
    /// Samples from `position` to the next event behind it, at most `limit`.
    [[nodiscard]] int distance(int position, int limit) const;
    /// Forgets what has been read; the rest stands at the begin of the next block.
    void endBlock();

private:
    struct CEntry {
        CExternalEvent event;
        std::uint32_t order;
    };

    CArray<CEntry> m_entries;
    std::size_t m_readPosition = 0;
};

} // namespace qrb
