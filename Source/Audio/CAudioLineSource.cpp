// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioLineSource.h"

#include "Audio/CAudioGraphChanges.h"
#include "Audio/CAudioLineRoute.h"
#include "Audio/CAudioLineSink.h"
#include "Audio/CAudioProcessConnection.h"

#include <algorithm>
#include <utility>

namespace qrb {

CAudioLineSource::CAudioLineSource() = default;

CAudioLineSource::~CAudioLineSource()
{
    disconnectAll();
}

void CAudioLineSource::connect(int port, CAudioLineSink& sink, int sinkPort, int order)
{
    for (const auto& connection : m_connections) {
        if (connection->isBetween(port, sink, sinkPort)) {
            return;
        }
    }
    CAudioProcessConnection& connection =
        *m_connections.append(std::make_unique<CAudioProcessConnection>(*this, port, sink, sinkPort, order));
    connection.setLines(m_lines.span());
    sink.add(connection);
    noteChange();
}

void CAudioLineSource::disconnect(int port, CAudioLineSink& sink, int sinkPort)
{
    for (const auto& connection : m_connections) {
        if (connection->isBetween(port, sink, sinkPort)) {
            drop(*connection);
            return;
        }
    }
}

void CAudioLineSource::disconnectAll()
{
    while (!m_connections.empty()) {
        drop(*m_connections.back());
    }
}

void CAudioLineSource::drop(CAudioProcessConnection& connection)
{
    noteChange();
    connection.sink().remove(connection);
    for (std::size_t i = 0; i < m_connections.size(); ++i) {
        if (m_connections[i].get() == &connection) {
            m_connections.removeAt(i);
            return;
        }
    }
}

ELineHearing CAudioLineSource::hearing() const
{
    ELineHearing hearing = m_connections.empty() ? ELineHearing::all : ELineHearing::half;
    for (const auto& connection : m_connections) {
        const bool isDelayed =
            std::ranges::any_of(connection->lines(), [](const auto& l) { return l.delay != nullptr; });
        hearing = isDelayed ? ELineHearing::all : std::min(hearing, connection->sink().hearing());
    }
    return hearing;
}

bool CAudioLineSource::isThinned() const
{
    return std::ranges::any_of(m_connections, [](const auto& connection) { return connection->sink().isThinning(); });
}

void CAudioLineSource::setLines(std::span<const CAudioLineInfo> lines)
{
    if (std::ranges::equal(lines, m_lines.span())) {
        return;
    }
    noteChange();
    m_lines.clear();
    m_lines.appendAll(lines);
    for (const auto& connection : m_connections) {
        connection->setLines(m_lines.span());
    }
}

void CAudioLineSource::noteChange()
{
    if (m_changes != nullptr) {
        ++m_changes->structure;
    }
}

void CAudioLineSource::setRoutes(std::span<const CAudioLineRoute> routes, CAudioGraphChanges& changes)
{
    m_changes = &changes;
    m_routes.clear();
    m_routes.appendAll(routes);
    m_routeEnds.clear();
    for (std::size_t line = 0, end = 0; line < m_lines.size(); ++line) {
        while (end < routes.size() && routes[end].index == static_cast<int>(line)) {
            ++end;
        }
        m_routeEnds.append(static_cast<std::uint16_t>(end));
    }
}

void CAudioLineSource::send(int index, const CSampleBuffer& buffer, int length)
{
    if (m_changes != nullptr && m_changes->isPlanned) {
        sendPlanned(index, CSampleBuffer(buffer), length);
        return;
    }
    for (const auto& connection : m_connections) {
        connection->send(index, buffer, length);
    }
}

void CAudioLineSource::sendPlanned(int index, CSampleBuffer&& buffer, int length)
{
    const auto line = static_cast<std::size_t>(index);
    const std::size_t begin = line == 0 ? 0 : m_routeEnds[line - 1];
    const std::size_t end = m_routeEnds[line];
    if (begin == end) {
        buffer.clear();
        return;
    }
    const auto deliver = [length](const CAudioLineRoute& route, CSampleBuffer&& delivered) {
        *route.buffer = std::move(delivered);
        *route.length = length;
        route.sink->noteBlock(length);
    };
    for (std::size_t i = begin; i + 1 < end; ++i)
        deliver(m_routes[i], CSampleBuffer(buffer));
    deliver(m_routes[end - 1], std::move(buffer));
}

} // namespace qrb
