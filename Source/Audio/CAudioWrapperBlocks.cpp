// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioWrapper.h"

#include "Audio/CAudioEnv.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioProcessBase.h"
#include "Audio/CSampleBufferPool.h"
#include "Audio/CScopedAllocWatch.h"
#include "Audio/CScopedFloatMode.h"
#include "Audio/HostSamples.h"
#include "Audio/Processes/CModOutput.h"

#include <algorithm>

namespace qrb {

void CAudioWrapper::processBlock(const void* const* inputs, void* const* outputs, int sampleCount) noexcept
{
    if (sampleCount <= 0)
        return;
    const CScopedFloatMode floatMode;
    const CScopedAllocWatch allocations(m_blockAllocations);
    if (!canProcess(inputs, outputs)) {
        m_events.endBlock();
        return;
    }
    flushHostParams();
    const int latency = m_env->latency();
    m_events.beginBlock(sampleCount);
    if (m_isReconfigureDue.exchange(false))
        announceInputs();
    runSubBlocks(inputs, outputs, sampleCount);
    m_events.endBlock();
    if (latency != m_env->latency())
        onLatencyChange();
}

bool CAudioWrapper::canProcess(const void* const* inputs, void* const* outputs) const
{
    return inputs != nullptr && outputs != nullptr && m_inputFormat.channelCount > 0 &&
           m_outputNode->format().channelCount > 0;
}

void CAudioWrapper::runSubBlocks(const void* const* inputs, void* const* outputs, int sampleCount)
{
    for (int position = 0; position < sampleCount;) {
        const bool hasApplied = applyEvents(position);
        const int count = m_events.distance(position, std::min(sampleCount - position, kMaxSubBlock));
        if (position == 0)
            m_env->setTimeOfNextBlock(m_env->timeNow() + count / m_env->sampleRate());
        if (hasApplied || position == 0)
            takeChanges();
        m_plan.beginBlock(*m_mainNode, m_paramCollector->audioChangeCount());
        sendInputs(inputs, position, count);
        m_plan.process(m_inputSource, *m_mainNode);
        m_outputNode->runInputStep();
        m_outputNode->copyTo(outputs, position, count);
        m_outputNode->releaseInputs();
        advanceTime(count);
        position += count;
    }
}

bool CAudioWrapper::applyEvents(int position)
{
    bool hasApplied = false;
    while (const CExternalEvent* event = m_events.due(position)) {
        if (event->kind == EExternalEventKind::midi)
            onMidiEvent(*event);
        else if (!onExtParamEvent(*event))
            break;
        m_events.advance();
        hasApplied = true;
    }
    return hasApplied;
}

void CAudioWrapper::takeChanges()
{
    {
        const platform::CScopedLock guard(m_env->lock());
        m_env->vizUpdateRateAudio = m_env->vizUpdateRate;
        m_paramCollector->takeQueue();
    }
    m_paramCollector->applyTaken();
}

void CAudioWrapper::announceInputs()
{
    CArray<CAudioLineInfo, 16> lines;
    for (int channel = 0; channel < m_inputFormat.channelCount + m_sidechainFormat.channelCount; ++channel)
        lines.append({.channel = channel, .sampleRate = m_env->sampleRate()});
    m_inputSource.setLines(lines.span());
}

void CAudioWrapper::sendInputs(const void* const* inputs, int position, int count)
{
    const int mainCount = m_inputFormat.channelCount;
    for (int channel = 0; channel < mainCount + m_sidechainFormat.channelCount; ++channel) {
        CSampleBuffer buffer = m_pool->get(count);
        if (channel < mainCount)
            readHostSamples(m_inputFormat, inputs, channel, position, count, buffer.data());
        else
            readHostSamples(m_sidechainFormat, m_sidechainBuffers, channel - mainCount, position, count, buffer.data());
        m_inputSource.send(channel, buffer, count);
    }
}

void CAudioWrapper::advanceTime(int count)
{
    m_env->setTimeNow(m_env->timeNow() + count / m_env->sampleRate());
}

void CAudioWrapper::primeGraph()
{
    const CScopedFloatMode floatMode;
    flushHostParams();
    const int latency = m_env->latency();
    if (m_isReconfigureDue.exchange(false))
        announceInputs();
    m_events.beginBlock(1);
    static_cast<void>(applyEvents(0));
    m_events.endBlock();
    m_env->setTimeOfNextBlock(m_env->timeNow() + 1.0 / m_env->sampleRate());
    takeChanges();
    m_plan.clear(); // the first pass looks at every node
    for (std::size_t line = 0; line < m_inputSource.lines().size(); ++line)
        m_inputSource.send(static_cast<int>(line), m_pool->getSilence(1), 1);
    m_plan.process(m_inputSource, *m_mainNode);
    m_outputNode->runInputStep();
    m_outputNode->releaseInputs();
    advanceTime(1);
    if (latency != m_env->latency())
        onLatencyChange();
}

} // namespace qrb
