// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioLine.h"
#include "Audio/CAudioLineRoute.h"
#include "Audio/CAudioLineSink.h"
#include "Core/CArray.h"

#include <cstdint>
#include <memory>
#include <span>

namespace qrb {

class CAudioLineSink;
struct CAudioGraphChanges;
class CAudioProcessConnection;

/// Where connections begin: the output of a node, the input that a node offers to the nodes inside it, or the outside
/// world. Announces lines, then sends a buffer a line in each block. Thread: audio.
class CAudioLineSource {
public:
    CAudioLineSource();
    CAudioLineSource(const CAudioLineSource&) = delete;
    CAudioLineSource& operator=(const CAudioLineSource&) = delete;
    ~CAudioLineSource();

    /// Adds a connection unless there is one between these ports. `order` ranks it among those of the sink.
    void connect(int port, CAudioLineSink& sink, int sinkPort, int order = 0);
    void disconnect(int port, CAudioLineSink& sink, int sinkPort);
    void disconnectAll();
    /// Removes one connection of this source.
    void drop(CAudioProcessConnection& connection);

    [[nodiscard]] std::span<const CAudioLineInfo> lines() const { return m_lines.span(); }
    /// Announces the lines; sinks learn of it only where something differs.
    void setLines(std::span<const CAudioLineInfo> lines);
    /// Hands this block of line `index` to every connection that carries it, or along its routes in a planned block.
    void send(int index, const CSampleBuffer& buffer, int length);

    /// The same in a planned block, for a buffer that the sender is done with.
    void sendPlanned(int index, CSampleBuffer&& buffer, int length);

    [[nodiscard]] std::span<const std::unique_ptr<CAudioProcessConnection>> connections() const
    {
        return m_connections.span();
    }
    /// What of the samples is heard where the lines go. Blocks in the thinned form are for `half` alone.
    [[nodiscard]] ELineHearing hearing() const;
    /// Whether the lines go where samples are dropped, now or at another time.
    [[nodiscard]] bool isThinned() const;
    /// Whether zeros were put between the samples; as long as the owner lives.
    [[nodiscard]] bool isStuffing() const { return m_isStuffing; }
    void setStuffing(bool isStuffing) { m_isStuffing = isStuffing; }
    /// Where the lines go in planned blocks, by ascending index. From now on `changes` hears of other lines and links.
    void setRoutes(std::span<const CAudioLineRoute> routes, CAudioGraphChanges& changes);

private:
    void noteChange();

    CArray<CAudioLineInfo> m_lines;
    CArray<std::unique_ptr<CAudioProcessConnection>> m_connections;
    CArray<CAudioLineRoute> m_routes;
    CArray<std::uint16_t, 8> m_routeEnds; ///< behind the last route of each line
    CAudioGraphChanges* m_changes = nullptr;
    bool m_isStuffing = false;
};

} // namespace qrb
