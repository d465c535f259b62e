// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessPort.h"

namespace qrb {

CAudioLine* CAudioProcessPort::findLine(int channel)
{
    for (CAudioLine& line : lines()) {
        if (line.channel == channel) {
            return &line;
        }
    }
    return nullptr;
}

void CAudioProcessPort::clearLines()
{
    for (CAudioLine& line : lines()) {
        line.channel = -1;
        line.sources.clear();
        line.buffer.clear();
    }
    m_lineCount = 0;
}

void CAudioProcessPort::addSource(const CAudioLineInfo& info, CAudioLine::CSource source, bool isSeparate)
{
    CAudioLine* line = isSeparate ? nullptr : findLine(info.channel);
    if (line == nullptr) {
        if (m_lineCount == kMaxLines) {
            return;
        }
        line = &m_lines[static_cast<std::size_t>(m_lineCount++)];
        line->channel = info.channel;
        line->group = info.group;
    }
    line->sources.append(source);
}

void CAudioProcessPort::releaseBuffers()
{
    for (CAudioLine& line : lines()) {
        line.buffer.clear();
    }
}

} // namespace qrb
