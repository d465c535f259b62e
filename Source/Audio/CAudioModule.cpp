// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioModule.h"

#include "Audio/CAudioProcessTerminalBase.h"
#include "Audio/CSampleBufferPool.h"

namespace qrb {

void CAudioModule::start() {}

void CAudioModule::reset() {}

void CAudioModule::update() {}

void CAudioModule::regParams() {}

void CAudioModule::processTogether(std::span<CAudioModule* const> modules)
{
    for (CAudioModule* const module : modules) {
        module->process();
    }
}

bool CAudioModule::processInSeries(std::span<CAudioModule* const>)
{
    return false;
}

CSampleBufferPool& CAudioModule::pool() const
{
    return m_node->pool();
}

int CAudioModule::element() const
{
    return m_node->elementIndex();
}

double* CAudioModule::writeOutput(int index)
{
    CSampleBuffer& buffer = m_outputs[static_cast<std::size_t>(index)];
    buffer = m_wholeOutputs == nullptr ? pool().get(m_blockLength) : m_wholeOutputs[index].from(m_wholeStart);
    return buffer.data();
}

double* CAudioModule::writeThinned(int index)
{
    CSampleBuffer& buffer = m_outputs[static_cast<std::size_t>(index)];
    buffer = pool().get(m_blockLength / 2);
    buffer.setForm(ESampleForm::thinned);
    return buffer.data();
}

void CAudioModule::passInput(int port, int inputIndex, int outputIndex)
{
    const CAudioLine* found = line(port, inputIndex);
    m_outputs[static_cast<std::size_t>(outputIndex)] =
        found == nullptr ? pool().getSilence(m_blockLength) : found->buffer;
}

void CAudioModule::setOutput(int index, const CSampleBuffer& buffer)
{
    m_outputs[static_cast<std::size_t>(index)] = buffer;
}

CAudioParamSlot CAudioModule::regParam(int index, double unbound) const
{
    return m_node->regParam(index, unbound);
}

void CAudioModule::updateAfter(double seconds)
{
    m_node->addDelayedUpdate(seconds, &m_isDirty);
}

bool CAudioModule::isTouched(const CAudioParamSlot& slot) const
{
    const auto place = static_cast<std::size_t>(slot.index);
    return m_isFirstUpdate || (place < m_touched.size() && m_touched[place] != 0);
}

} // namespace qrb
