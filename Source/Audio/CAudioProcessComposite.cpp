// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessComposite.h"

#include "Audio/CAudioProcessConnection.h"
#include "Core/CLog.h"

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

void CAudioProcessComposite::announceInner()
{
    m_innerLines.clear();
    for (int port = 0; port < portCount(); ++port) {
        for (const CAudioLine& line : lines(port)) {
            m_innerLines.append({line.channel, line.group, port, inputLatency(), sampleRate()});
        }
    }
    m_innerInput.setLines(m_innerLines.span());
}

std::unique_ptr<CAudioProcessBase> CAudioProcessComposite::makeInner(const CAudioProcessDefBase& innerDefinition,
                                                                     const CString& name, int element,
                                                                     EExpansion expansion)
{
    std::unique_ptr<CAudioProcessBase> node;
    const CErrorPtr error =
        instantiateProcess({context(), &innerDefinition, name, groupIndex(), element, expansion}, node);
    logError(error);
    return node;
}

CArray<CAudioLineSource*, 8> CAudioProcessComposite::innerSources()
{
    CArray<CAudioLineSource*, 8> sources;
    sources.append(&m_innerInput);
    return sources;
}

CAudioProcessComposite::CInnerLine CAudioProcessComposite::innerLine(const CAudioLine& line)
{
    int index = 0;
    for (int port = 0; port < portCount(); ++port) {
        for (const CAudioLine& candidate : lines(port)) {
            if (&candidate == &line) {
                return {&m_innerInput, index};
            }
            ++index;
        }
    }
    return {};
}

void CAudioProcessComposite::sendInner()
{
    int index = 0;
    for (int port = 0; port < portCount(); ++port) {
        for (const CAudioLine& line : lines(port)) {
            m_innerInput.send(index++, line.buffer, blockLength());
        }
    }
}

void CAudioProcessComposite::processPlanned()
{
    runPlannedInputStep();
    sendInner();
    releasePlannedInputs();
}

void CAudioProcessComposite::processLines()
{
    sendInner();
    releaseInputs(); // what the inner nodes are done with may serve them again
    runSequence();
}

bool CAudioProcessComposite::takesForm(ESampleForm) const
{
    return true;
}

void CAudioProcessComposite::runSequence()
{
    m_innerOutput.setHearing(output().hearing());
    m_innerOutput.setThinning(output().isThinned());
    m_innerInput.setStuffing(input().isStuffed());
    for (CAudioProcessBase* node : m_sequence) {
        node->process();
    }
    if (m_innerOutput.hasChanges()) {
        m_innerOutput.clearChanges();
        noteStructureChange();
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
