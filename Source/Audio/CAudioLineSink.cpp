// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioLineSink.h"

#include "Audio/CAudioLineSource.h"
#include "Audio/CAudioProcessConnection.h"

namespace qrb {

CAudioLineSink::~CAudioLineSink()
{
    disconnectAll();
}

bool CAudioLineSink::isStuffed() const
{
    return std::ranges::any_of(m_connections, [](const auto* connection) { return connection->source().isStuffing(); });
}

void CAudioLineSink::disconnectAll()
{
    while (!m_connections.empty()) {
        m_connections.back()->source().drop(*m_connections.back());
    }
}

void CAudioLineSink::add(CAudioProcessConnection& connection)
{
    std::size_t at = m_connections.size();
    while (at > 0 && m_connections[at - 1]->order() > connection.order()) {
        --at;
    }
    m_connections.insertAt(at, &connection);
    noteChange();
}

void CAudioLineSink::remove(CAudioProcessConnection& connection)
{
    m_connections.removeAt(m_connections.indexOf(&connection));
    noteChange();
}

} // namespace qrb
