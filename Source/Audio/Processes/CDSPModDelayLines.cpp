// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CDSPModDelayLines.h"

namespace qrb {

void CDSPModDelayLines::setCount(int count, CSampleBufferPool& pool)
{
    while (this->count() > count)
        m_lines.removeLast();
    while (this->count() < count)
        m_lines.emplace(pool);
}

void CDSPModDelayLines::set(int blockSize, int fadeLength, int delay)
{
    for (CDSPModDelay& line : m_lines) {
        line.setBlockSize(blockSize);
        line.setFadeLength(fadeLength);
        line.setDelay(delay);
    }
}

void CDSPModDelayLines::reset()
{
    for (CDSPModDelay& line : m_lines)
        line.reset();
}

} // namespace qrb
