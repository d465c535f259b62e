// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioLine.h"
#include "Core/CArray.h"
#include "Core/CCheckedObject.h"

#include <memory>
#include <span>

namespace qrb {

class CAudioLineSink;
class CAudioLineSource;
class CDSPModDelay;
class CSampleBufferPool;

/// The way of lines from one source's port to one sink's port. Owned by the source; the sink lists it.
/// Thread: audio.
class CAudioProcessConnection : public CCheckedObject {
public:
    /// As a port: all ports, each line keeps its own.
    static constexpr int kAllPorts = -1;

    /// One line on its way: what it is, the block it carries, and the delay that brings it level with its neighbours.
    struct CLine {
        CAudioLineInfo info;
        int sourceIndex = 0; ///< among the source's lines
        CSampleBuffer buffer;
        int length = 0; ///< samples in `buffer`
        std::unique_ptr<CDSPModDelay> delay;
        bool isKnown = false; ///< the sink has taken the line over, so a delay that it gets crosses over
    };

    CAudioProcessConnection(CAudioLineSource& source, int sourcePort, CAudioLineSink& sink, int sinkPort, int order);
    ~CAudioProcessConnection() override;

    [[nodiscard]] int sourcePort() const { return m_sourcePort; }
    [[nodiscard]] int sinkPort() const { return m_sinkPort; }
    [[nodiscard]] int order() const { return m_order; }
    [[nodiscard]] CAudioLineSource& source() const { return m_source; }
    [[nodiscard]] CAudioLineSink& sink() const { return m_sink; }
    [[nodiscard]] bool isBetween(int sourcePort, const CAudioLineSink& sink, int sinkPort) const
    {
        return sourcePort == m_sourcePort && &sink == &m_sink && sinkPort == m_sinkPort;
    }
    [[nodiscard]] CArray<CLine>& lines() { return m_lines; }
    /// Port of the sink that a line arrives at.
    [[nodiscard]] int arrivalPort(const CLine& line) const
    {
        return m_sinkPort == kAllPorts ? line.info.port : m_sinkPort;
    }

    /// The line that the source sends as `sourceIndex`, or null.
    [[nodiscard]] CLine* findLine(int sourceIndex);

    /// Takes over what the source announces; lines that stay keep their delays. The sink learns of a difference.
    void setLines(std::span<const CAudioLineInfo> sourceLines);
    /// Takes this block of the source's line `sourceIndex`.
    void send(int sourceIndex, const CSampleBuffer& buffer, int length);

    /// Sets how many samples a line lacks to be level with the others. A change crosses over; a line that is new here
    /// takes its delay at once.
    void alignLine(CLine& line, int samples, CSampleBufferPool& pool);
    /// The line's block of `length` samples, delayed as set; silence where none has been sent. Gives it up. In any form
    /// that it was sent in.
    [[nodiscard]] CSampleBuffer takeBlock(CLine& line, int length, CSampleBufferPool& pool);
    /// Forgets what the delays hold and the blocks on their way.
    void reset();

private:
    enum class EMatch { sameOrigin, sameChannel };

    /// Gives the delays of the present lines to those that go on from them. A line that stays comes before one that
    /// merely has the channel of a line that goes.
    void handOver(CArray<CLine>& lines, EMatch match);

    CAudioLineSource& m_source;
    CAudioLineSink& m_sink;
    int m_sourcePort;
    int m_sinkPort;
    int m_order;
    CArray<CLine> m_lines;
};

} // namespace qrb
