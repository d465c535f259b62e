// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"

#include <cstdint>
#include <span>
#include <utility>

namespace qrb {

class CAudioProcessConnection;

/// What becomes of the samples that arrive somewhere.
enum class ELineHearing : std::uint8_t {
    all,      ///< each counts
    changing, ///< each counts until what has changed is settled; then perhaps half of them
    half      ///< those at odd places of the block are dropped
};

/// Where connections end: the input of a node, or the output that a node offers to the nodes inside it.
/// Thread: audio.
class CAudioLineSink {
public:
    CAudioLineSink() = default;
    CAudioLineSink(const CAudioLineSink&) = delete;
    CAudioLineSink& operator=(const CAudioLineSink&) = delete;
    ~CAudioLineSink();

    /// In ascending order of what the connections were made with, so that sums do not depend on the past.
    [[nodiscard]] std::span<CAudioProcessConnection* const> connections() const { return m_connections.span(); }
    void noteChange() { ++m_changeCount; }
    [[nodiscard]] bool hasChanges() const { return m_changeCount != 0; }
    void clearChanges() { m_changeCount = 0; }
    /// What the owner makes of the lines as they are now.
    [[nodiscard]] ELineHearing hearing() const
    {
        return m_hearing == ELineHearing::half && hasChanges() ? ELineHearing::changing : m_hearing;
    }
    void setHearing(ELineHearing hearing) { m_hearing = hearing; }
    /// Whether the owner drops samples as long as nothing keeps it from that; for good.
    [[nodiscard]] bool isThinning() const { return m_isThinning; }
    void setThinning(bool isThinning) { m_isThinning = isThinning; }
    /// Whether zeros were put between the samples that arrive, on any line.
    [[nodiscard]] bool isStuffed() const;
    /// A block of so many samples is on its way.
    void noteBlock(int length) { m_blockLength = length; }
    [[nodiscard]] int blockLength() const { return m_blockLength; }
    /// Samples of the block that was noted last; 0 where none was since the last call.
    [[nodiscard]] int takeBlockLength() { return std::exchange(m_blockLength, 0); }
    /// Removes all connections that end here.
    void disconnectAll();

private:
    friend class CAudioLineSource;
    void add(CAudioProcessConnection& connection);
    void remove(CAudioProcessConnection& connection);

    CArray<CAudioProcessConnection*> m_connections;
    std::uint32_t m_changeCount = 0;
    int m_blockLength = 0;
    ELineHearing m_hearing = ELineHearing::all;
    bool m_isThinning = false;
};

} // namespace qrb
