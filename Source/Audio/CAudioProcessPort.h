// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioLine.h"
#include "Core/CCheckedObject.h"

#include <array>
#include <span>

namespace qrb {

/// Input port of a node: the lines that arrive there, each channel once unless they are kept apart.
/// Thread: audio.
class CAudioProcessPort : public CCheckedObject {
public:
    static constexpr int kMaxLines = 16;

    [[nodiscard]] std::span<CAudioLine> lines() { return {m_lines.data(), static_cast<std::size_t>(m_lineCount)}; }
    [[nodiscard]] std::span<const CAudioLine> lines() const
    {
        return {m_lines.data(), static_cast<std::size_t>(m_lineCount)};
    }
    [[nodiscard]] int lineCount() const { return m_lineCount; }
    /// The first line of a channel, or null.
    [[nodiscard]] CAudioLine* findLine(int channel);

    /// Empties the table before it is built anew.
    void clearLines();
    /// Adds a source: to the slot of its channel, or to a slot of its own where there is none or `isSeparate` is set.
    /// A port that is full drops the line.
    void addSource(const CAudioLineInfo& info, CAudioLine::CSource source, bool isSeparate);
    /// Gives the buffers of the block up.
    void releaseBuffers();

private:
    std::array<CAudioLine, kMaxLines> m_lines;
    int m_lineCount = 0;
};

} // namespace qrb
