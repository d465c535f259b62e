// SPDX-License-Identifier: GPL-3.0-or-later
// The input step of every node: which lines arrive, how they are brought level in time, and their samples.
#include "Audio/CAudioProcessBase.h"
#include "Audio/CAudioProcessConnection.h"
#include "Audio/CAudioProcessDefBase.h"
#include "Audio/CSampleBufferPool.h"
#include "Audio/Processes/CDSPModDelay.h"

#include <algorithm>
#include <span>
#include <utility>

namespace qrb {

namespace {

/// Sources that are added in one go.
constexpr std::size_t kSumWidth = 4;

/// Adds up to kSumWidth lines to `first`, from left to right; `out` may be `first`.
void addLines(double* out, const double* first, std::span<const CSampleBuffer> more, int count)
{
    const double* a = more[0].data();
    const double* b = more.size() > 1 ? more[1].data() : nullptr;
    const double* c = more.size() > 2 ? more[2].data() : nullptr;
    const double* d = more.size() > 3 ? more[3].data() : nullptr;
    const auto run = [&](auto sum) {
        for (int i = 0; i < count; ++i) {
            out[i] = sum(i);
        }
    };
    switch (more.size()) {
    case 1:
        return run([&](int i) { return first[i] + a[i]; });
    case 2:
        return run([&](int i) { return first[i] + a[i] + b[i]; });
    case 3:
        return run([&](int i) { return first[i] + a[i] + b[i] + c[i]; });
    default:
        return run([&](int i) { return first[i] + a[i] + b[i] + c[i] + d[i]; });
    }
}

void maximize(double* out, const double* a, const double* b, int count)
{
    for (int i = 0; i < count; ++i) {
        out[i] = std::max(a[i], b[i]);
    }
}

} // namespace

std::span<CAudioLine> CAudioProcessBase::lines(int port)
{
    return port < 0 || port >= portCount() ? std::span<CAudioLine>{} : m_ports[static_cast<std::size_t>(port)]->lines();
}

void CAudioProcessBase::declarePort(int port)
{
    while (portCount() <= port && portCount() < kMaxPorts) {
        m_ports.append(std::make_unique<CAudioProcessPort>());
    }
}

void CAudioProcessBase::runInputStep()
{
    if (m_input.hasChanges()) {
        m_isConfigurationRequested = settleLines() || m_isConfigurationRequested;
    }
    m_blockLength = m_input.takeBlockLength();
    if (m_blockLength > 0 && !m_delayedUpdates.empty()) {
        runDelayedUpdates();
    }
    m_isConfigurationChanged = std::exchange(m_isConfigurationRequested, false);
    update();
    m_isConfigurationChanged = false;
    gatherBuffers();
}

void CAudioProcessBase::runPlannedInputStep()
{
    m_blockLength = m_input.takeBlockLength();
    if (m_blockLength == 0) {
        return;
    }
    for (CAudioLine* const line : m_plannedLines) {
        if (!line->isDirect) {
            gatherLine(*line);
        } else if (!line->buffer || line->length != m_blockLength) {
            line->buffer = pool().getSilence(m_blockLength);
        } else if (line->buffer.form() != ESampleForm::whole) {
            makeWhole(*line);
        }
    }
}

void CAudioProcessBase::takeWholeBlock(int length, CArray<CSampleBuffer, 4>& inputs)
{
    static_cast<void>(m_input.takeBlockLength());
    m_blockLength = length;
    for (CAudioLine* const line : m_plannedLines) {
        if (!line->isDirect) {
            gatherLine(*line);
        } else if (line->buffer && line->length != length) {
            line->buffer = pool().getSilence(length);
        }
        makeWhole(*line);
        inputs.append(std::move(line->buffer));
    }
}

void CAudioProcessBase::takePiece(std::span<const CSampleBuffer> inputs, int start, int length)
{
    m_blockLength = length;
    for (std::size_t i = 0; i < m_plannedLines.size(); ++i) {
        CAudioLine& line = *m_plannedLines[i];
        if (inputs[i]) {
            line.buffer = inputs[i].from(start);
        } else if (!line.buffer) {
            line.buffer = pool().getSilence(length);
        }
    }
}

void CAudioProcessBase::releasePlannedInputs()
{
    for (CAudioLine* const line : m_plannedLines) {
        line->buffer.clear();
    }
}

bool CAudioProcessBase::isAsItComes(const CAudioLine& line)
{
    if (line.sources.size() != 1) {
        return false;
    }
    const CAudioLine::CSource& source = line.sources[0];
    return source.connection->lines()[static_cast<std::size_t>(source.index)].delay == nullptr;
}

void CAudioProcessBase::planInputs()
{
    m_plannedLines.clear();
    for (const auto& port : m_ports) {
        for (CAudioLine& line : port->lines()) {
            line.isDirect = isAsItComes(line);
            m_plannedLines.append(&line);
        }
    }
}

bool CAudioProcessBase::settleLines()
{
    noteStructureChange();
    m_input.clearChanges();
    CArray<int, 48> before;
    CArray<int, 48> after;
    const auto note = [this](CArray<int, 48>& out) {
        for (int port = 0; port < portCount(); ++port) {
            for (const CAudioLine& line : lines(port)) {
                const int identity[] = {port, line.channel, line.group};
                out.appendAll(identity);
            }
        }
    };
    const double oldRate = m_sampleRate;
    const int oldLatency = m_inputLatency;
    note(before);
    collectLines();
    alignLines();
    note(after);
    return m_sampleRate != oldRate || m_inputLatency != oldLatency || !(before == after);
}

void CAudioProcessBase::collectLines()
{
    for (const auto& port : m_ports) {
        port->clearLines();
    }
    m_inputLatency = 0;
    const bool isSeparate = m_definition != nullptr && m_definition->isCompInput();
    for (CAudioProcessConnection* connection : m_input.connections()) {
        for (std::size_t i = 0; i < connection->lines().size(); ++i) {
            const CAudioProcessConnection::CLine& line = connection->lines()[i];
            const int port = connection->arrivalPort(line);
            if (port < 0 || port >= kMaxPorts) {
                continue;
            }
            declarePort(port);
            m_ports[static_cast<std::size_t>(port)]->addSource(line.info, {connection, static_cast<int>(i)},
                                                               isSeparate);
            m_inputLatency = std::max(m_inputLatency, line.info.latency);
        }
    }
}

void CAudioProcessBase::alignLines()
{
    bool isRateKnown = false;
    for (const auto& port : m_ports) {
        for (CAudioLine& line : port->lines()) {
            line.latency = m_inputLatency;
            for (const CAudioLine::CSource& source : line.sources) {
                auto& from = source.connection->lines()[static_cast<std::size_t>(source.index)];
                source.connection->alignLine(from, m_inputLatency - from.info.latency, pool());
                if (!isRateKnown) {
                    m_sampleRate = from.info.sampleRate;
                    isRateKnown = true;
                }
            }
        }
    }
}

void CAudioProcessBase::gatherBuffers()
{
    if (m_blockLength == 0) {
        return;
    }
    for (const auto& port : m_ports) {
        for (CAudioLine& line : port->lines()) {
            gatherLine(line);
        }
    }
}

void CAudioProcessBase::gatherLine(CAudioLine& line)
{
    if (line.sources.size() != 1) {
        line.buffer = mergeSources(line);
        return;
    }
    line.buffer = takeBlock(line.sources[0]);
    makeWhole(line);
}

void CAudioProcessBase::makeWhole(CAudioLine& line)
{
    if (line.buffer.form() != ESampleForm::whole && !takesForm(line.buffer.form())) {
        line.buffer = pool().getWhole(line.buffer, m_blockLength);
    }
}

void CAudioProcessBase::releaseInputs()
{
    for (const auto& port : m_ports) {
        port->releaseBuffers();
    }
}

CSampleBuffer CAudioProcessBase::takeBlock(const CAudioLine::CSource& source)
{
    return source.connection->takeBlock(source.connection->lines()[static_cast<std::size_t>(source.index)],
                                        m_blockLength, pool());
}

CSampleBuffer CAudioProcessBase::takeSource(const CAudioLine::CSource& source)
{
    return pool().getWhole(takeBlock(source), m_blockLength);
}

CSampleBuffer CAudioProcessBase::mergeSources(const CAudioLine& line)
{
    const EInputCombo combo = m_definition->inputCombo();
    const std::size_t count = line.sources.size();
    const std::size_t width = combo == EInputCombo::maximum ? 1 : kSumWidth;
    CSampleBuffer merged = takeSource(line.sources[0]);
    for (std::size_t done = 1; done < count;) {
        CArray<CSampleBuffer, kSumWidth> sources;
        for (; done < count && sources.size() < width; ++done) {
            sources.append(takeSource(line.sources[done]));
        }
        CSampleBuffer out = merged.isUnique() ? merged : pool().get(m_blockLength);
        if (combo == EInputCombo::maximum) {
            maximize(out.data(), merged.data(), sources[0].data(), m_blockLength);
        } else {
            addLines(out.data(), merged.data(), sources.span(), m_blockLength);
        }
        merged = std::move(out);
    }
    if (combo == EInputCombo::average) {
        double* out = merged.data(); // nobody else's by now
        const double scale = 1.0 / static_cast<double>(count);
        for (int i = 0; i < m_blockLength; ++i) {
            out[i] *= scale;
        }
    }
    return merged;
}

} // namespace qrb
