// SPDX-License-Identifier: GPL-3.0-or-later
// The input step of every node: which lines arrive, how they are brought level in time, and their samples.
#include "Audio/CAudioProcessBase.h"
#include "Audio/CAudioProcessConnection.h"
#include "Audio/CAudioProcessDefBase.h"
#include "Audio/CSampleBufferPool.h"

#include <algorithm>
#include <array>
#include <utility>

namespace qrb {

namespace {

/// Sources that are added in one go.
constexpr std::size_t kSumWidth = 4;

void addFour(double* out, const std::array<CSampleBuffer, kSumWidth>& sources, int count)
{
    const double* a = sources[0].data();
    const double* b = sources[1].data();
    const double* c = sources[2].data();
    const double* d = sources[3].data();
    for (int i = 0; i < count; ++i) {
        out[i] = out[i] + a[i] + b[i] + c[i] + d[i];
    }
}

void addOne(double* out, const CSampleBuffer& source, int count)
{
    const double* in = source.data();
    for (int i = 0; i < count; ++i) {
        out[i] += in[i];
    }
}

void maximize(double* out, const CSampleBuffer& source, int count)
{
    const double* in = source.data();
    for (int i = 0; i < count; ++i) {
        out[i] = std::max(out[i], in[i]);
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
    findBlockLength();
    if (m_blockLength > 0) {
        runDelayedUpdates();
    }
    m_isConfigurationChanged = std::exchange(m_isConfigurationRequested, false);
    update();
    m_isConfigurationChanged = false;
    gatherBuffers();
}

bool CAudioProcessBase::settleLines()
{
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

void CAudioProcessBase::findBlockLength()
{
    m_blockLength = 0;
    for (const auto& port : m_ports) {
        for (const CAudioLine& line : port->lines()) {
            for (const CAudioLine::CSource& source : line.sources) {
                const auto& from = source.connection->lines()[static_cast<std::size_t>(source.index)];
                if (from.buffer) {
                    m_blockLength = from.length;
                    return;
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
            line.buffer = line.sources.size() == 1 ? takeSource(line.sources[0]) : mergeSources(line);
        }
    }
}

void CAudioProcessBase::releaseInputs()
{
    for (const auto& port : m_ports) {
        port->releaseBuffers();
    }
}

CSampleBuffer CAudioProcessBase::takeSource(const CAudioLine::CSource& source)
{
    return source.connection->takeBlock(source.connection->lines()[static_cast<std::size_t>(source.index)],
                                        m_blockLength, pool());
}

CSampleBuffer CAudioProcessBase::mergeSources(const CAudioLine& line)
{
    const EInputCombo combo = m_definition->inputCombo();
    const std::size_t count = line.sources.size();
    const CSampleBuffer first = takeSource(line.sources[0]);
    CSampleBuffer merged = pool().get(m_blockLength);
    double* out = merged.data();
    std::copy_n(first.data(), m_blockLength, out);
    std::size_t done = 1;
    if (combo != EInputCombo::maximum) {
        for (; done + kSumWidth <= count; done += kSumWidth) {
            std::array<CSampleBuffer, kSumWidth> sources;
            for (std::size_t i = 0; i < kSumWidth; ++i) {
                sources[i] = takeSource(line.sources[done + i]);
            }
            addFour(out, sources, m_blockLength);
        }
    }
    for (; done < count; ++done) {
        const CSampleBuffer source = takeSource(line.sources[done]);
        if (combo == EInputCombo::maximum) {
            maximize(out, source, m_blockLength);
        } else {
            addOne(out, source, m_blockLength);
        }
    }
    if (combo == EInputCombo::average) {
        const double scale = 1.0 / static_cast<double>(count);
        for (int i = 0; i < m_blockLength; ++i) {
            out[i] *= scale;
        }
    }
    return merged;
}

} // namespace qrb
