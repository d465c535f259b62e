// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessComposite.h"

#include "Audio/CAudioProcessConnection.h"

namespace qrb {

void CAudioProcessComposite::reset()
{
    CAudioProcessBase::reset();
    for (CAudioProcessBase* node : m_sequence) {
        node->reset();
    }
    for (CAudioProcessConnection* connection : m_innerOutput.connections()) {
        connection->reset();
    }
}

void CAudioProcessComposite::runSequence()
{
    for (CAudioProcessBase* node : m_sequence) {
        node->process();
    }
    if (m_innerOutput.hasChanges()) {
        m_innerOutput.clearChanges();
        announceOutput();
    }
    int index = 0;
    for (CAudioProcessConnection* connection : m_innerOutput.connections()) {
        for (CAudioProcessConnection::CLine& line : connection->lines()) {
            output().send(index++, line.buffer, line.length);
            line.buffer.clear();
        }
    }
}

void CAudioProcessComposite::announceOutput()
{
    m_announced.clear();
    for (CAudioProcessConnection* connection : m_innerOutput.connections()) {
        for (const CAudioProcessConnection::CLine& line : connection->lines()) {
            CAudioLineInfo& info = m_announced.append(line.info);
            info.port = connection->arrivalPort(line);
        }
    }
    output().setLines(m_announced.span());
}

} // namespace qrb
