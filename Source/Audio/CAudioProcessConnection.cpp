// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessConnection.h"

#include "Audio/CAudioLineSink.h"
#include "Audio/CAudioLineSource.h"
#include "Audio/Processes/CDSPModDelay.h"
#include "Core/CNumberText.h"

#include <algorithm>
#include <utility>

namespace qrb {

namespace {

constexpr double kAlignFadeSeconds = 0.015;
constexpr int kAlignBlockSize = 1024;

} // namespace

CAudioProcessConnection::CAudioProcessConnection(CAudioLineSource& source, int sourcePort, CAudioLineSink& sink,
                                                 int sinkPort, int order)
    : m_source(source), m_sink(sink), m_sourcePort(sourcePort), m_sinkPort(sinkPort), m_order(order)
{
}

CAudioProcessConnection::~CAudioProcessConnection() = default;

void CAudioProcessConnection::setLines(std::span<const CAudioLineInfo> sourceLines)
{
    CArray<CLine> lines;
    bool isChanged = false;
    for (std::size_t i = 0; i < sourceLines.size(); ++i) {
        const CAudioLineInfo& info = sourceLines[i];
        if (m_sourcePort != kAllPorts && info.port != m_sourcePort) {
            continue;
        }
        CLine& line = lines.emplace();
        line.info = info;
        line.sourceIndex = static_cast<int>(i);
        const std::size_t place = lines.size() - 1;
        isChanged = isChanged || place >= m_lines.size() || !(m_lines[place].info == info);
    }
    isChanged = isChanged || lines.size() != m_lines.size();
    handOver(lines, EMatch::sameOrigin);
    handOver(lines, EMatch::sameChannel);
    m_lines = std::move(lines);
    if (isChanged) {
        m_sink.noteChange();
    }
}

void CAudioProcessConnection::handOver(CArray<CLine>& lines, EMatch match)
{
    const auto isHeir = [match](const CAudioLineInfo& a, const CAudioLineInfo& b) {
        return a.channel == b.channel && a.port == b.port && a.sampleRate == b.sampleRate &&
               (match == EMatch::sameChannel || a.origin == b.origin);
    };
    for (CLine& line : lines) {
        for (CLine& old : m_lines) {
            if (!line.isKnown && old.isKnown && isHeir(line.info, old.info)) {
                line.delay = std::move(old.delay);
                line.isKnown = std::exchange(old.isKnown, false);
            }
        }
    }
}

CAudioProcessConnection::CLine* CAudioProcessConnection::findLine(int sourceIndex)
{
    // Mostly all lines of the source go this way.
    const auto place = static_cast<std::size_t>(sourceIndex);
    if (place < m_lines.size() && m_lines[place].sourceIndex == sourceIndex) {
        return &m_lines[place];
    }
    const auto found = std::ranges::find(m_lines, sourceIndex, &CLine::sourceIndex);
    return found == m_lines.end() ? nullptr : found;
}

void CAudioProcessConnection::send(int sourceIndex, const CSampleBuffer& buffer, int length)
{
    CLine* line = findLine(sourceIndex);
    if (line == nullptr) {
        return;
    }
    line->buffer = buffer;
    line->length = length;
    m_sink.noteBlock(length);
}

void CAudioProcessConnection::alignLine(CLine& line, int samples, CSampleBufferPool& pool)
{
    const bool isKnown = std::exchange(line.isKnown, true);
    if (line.delay == nullptr) {
        if (samples == 0) {
            return;
        }
        line.delay = std::make_unique<CDSPModDelay>(pool);
        line.delay->setBlockSize(kAlignBlockSize);
        if (isKnown) {
            line.delay->setDelay(0); // what has been sounding undelayed is what the transition starts from
        }
    }
    line.delay->setFadeLength(roundToInt(kAlignFadeSeconds * line.info.sampleRate));
    if (line.delay->delay() != samples || !isKnown) {
        line.delay->setDelay(samples);
    }
}

CSampleBuffer CAudioProcessConnection::takeBlock(CLine& line, int length, CSampleBufferPool& pool)
{
    CSampleBuffer buffer = std::move(line.buffer);
    // A node that did not run leaves nothing, or the block of another length.
    if (!buffer || line.length != length) {
        buffer = pool.getSilence(length);
    }
    // A delay that has become neutral stays: what it remembers must not depend on where blocks end.
    return line.delay == nullptr ? buffer : line.delay->process(pool.getWhole(buffer, length), length);
}

void CAudioProcessConnection::reset()
{
    for (CLine& line : m_lines) {
        line.buffer.clear();
        if (line.delay != nullptr) {
            const int samples = line.delay->delay();
            line.delay->reset();
            line.delay->setDelay(samples);
        }
    }
}

} // namespace qrb
