// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessComposite.h"

#include "Audio/CAudioProcessConnection.h"

#include <cstdint>

namespace qrb {

namespace {

/// Spreads the ways that lines have taken through nested nodes.
constexpr std::uint64_t kOriginFactor = 1000003;

} // namespace

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
            info.origin = info.origin * kOriginFactor + static_cast<std::uint64_t>(connection->order()) + 1;
        }
    }
    output().setLines(m_announced.span());
}

} // namespace qrb
