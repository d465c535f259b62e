// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Processes/CDSPModDelay.h"

namespace qrb {

/// The same delay on each of a module's lines. Thread: audio.
class CDSPModDelayLines {
public:
    /// Makes one delay a line; those that stay keep their signal.
    void setCount(int count, CSampleBufferPool& pool);

    [[nodiscard]] int count() const { return static_cast<int>(m_lines.size()); }

    /// Settings and delay of all lines, in samples.
    void set(int blockSize, int fadeLength, int delay);

    void reset();

    [[nodiscard]] CSampleBuffer process(int line, const CSampleBuffer& in, int length)
    {
        return m_lines[static_cast<std::size_t>(line)].process(in, length);
    }

private:
    CArray<CDSPModDelay, 1> m_lines;
};

} // namespace qrb
