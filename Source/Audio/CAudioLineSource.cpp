// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioLineSource.h"

#include "Audio/CAudioLineSink.h"
#include "Audio/CAudioProcessConnection.h"

#include <algorithm>

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
    connection.sink().remove(connection);
    for (std::size_t i = 0; i < m_connections.size(); ++i) {
        if (m_connections[i].get() == &connection) {
            m_connections.removeAt(i);
            return;
        }
    }
}

void CAudioLineSource::setLines(std::span<const CAudioLineInfo> lines)
{
    if (std::ranges::equal(lines, m_lines.span())) {
        return;
    }
    m_lines.clear();
    m_lines.appendAll(lines);
    for (const auto& connection : m_connections) {
        connection->setLines(m_lines.span());
    }
}

void CAudioLineSource::send(int index, const CSampleBuffer& buffer, int length)
{
    for (const auto& connection : m_connections) {
        connection->send(index, buffer, length);
    }
}

} // namespace qrb
