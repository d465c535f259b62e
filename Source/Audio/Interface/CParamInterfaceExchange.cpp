// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Interface/CParamInterfaceExchange.h"

#include "Audio/Interface/CParamInterfaceBase.h"
#include "Audio/Interface/CParamInterfaceBaseConnector.h"
#include "Core/CInputStream.h"

#include <iterator>
#include <utility>

namespace qrb {

using platform::CScopedLock;

void CParamInterfaceExchange::setBase(CParamInterfaceBase* base)
{
    const CScopedLock lock(m_connectorLock);
    m_base = base;
}

CErrorPtr CParamInterfaceExchange::processClientData(CInputStream& in)
{
    const CScopedLock lock(m_connectorLock);
    if (m_base == nullptr)
        return QRB_ERROR("@qrbstr_CParamInterfaceBaseConnector_processClientData_NoBase No base object defined.");
    QRB_TRY(m_base->processMessage(in));
    return {};
}

std::uint32_t CParamInterfaceExchange::addClient()
{
    const CScopedLock lock(m_queueLock);
    const auto id = static_cast<std::uint32_t>(m_clientIds.take(0));
    if (id != 0)
        m_queues.emplace(id, std::make_unique<CParamInterfaceQueue>());
    return id;
}

void CParamInterfaceExchange::removeClient(std::uint32_t clientId)
{
    const CScopedLock lock(m_connectorLock);
    // The number is free again only when the base knows nothing more of it.
    if (m_base != nullptr && hasClient(clientId))
        m_base->removeClient(clientId);
    const CScopedLock queueLock(m_queueLock);
    m_queues.erase(clientId);
    m_clientIds.give(static_cast<std::int32_t>(clientId));
}

bool CParamInterfaceExchange::hasClient(std::uint32_t clientId) const
{
    const CScopedLock lock(m_queueLock);
    return findQueue(clientId) != nullptr;
}

CParamInterfaceQueue* CParamInterfaceExchange::findQueue(std::uint32_t clientId) const
{
    const auto found = m_queues.find(clientId);
    return found != m_queues.end() ? found->second.get() : nullptr;
}

void CParamInterfaceExchange::send(std::uint32_t clientId, CByteArray&& message)
{
    const CScopedLock lock(m_queueLock);
    if (clientId != CParamInterfaceBaseConnector::kAllClients) {
        if (CParamInterfaceQueue* const queue = findQueue(clientId))
            queue->append(std::move(message));
        return;
    }
    if (m_queues.empty())
        return;
    const auto last = std::prev(m_queues.end());
    for (auto each = m_queues.begin(); each != last; ++each)
        each->second->append(CByteArray(message));
    last->second->append(std::move(message));
}

bool CParamInterfaceExchange::takeMessage(std::uint32_t clientId, CByteArray& out)
{
    {
        const CScopedLock lock(m_queueLock);
        CParamInterfaceQueue* const queue = findQueue(clientId);
        if (queue == nullptr)
            return false;
        if (!queue->takeOverrun())
            return queue->takeFirst(out);
    }
    {
        const CScopedLock lock(m_connectorLock);
        if (m_base != nullptr)
            m_base->tellAll(clientId);
    }
    const CScopedLock lock(m_queueLock);
    CParamInterfaceQueue* const queue = findQueue(clientId);
    return queue != nullptr && queue->takeFirst(out);
}

std::size_t CParamInterfaceExchange::waitingBytes(std::uint32_t clientId) const
{
    const CScopedLock lock(m_queueLock);
    const CParamInterfaceQueue* const queue = findQueue(clientId);
    return queue != nullptr ? queue->byteCount() : 0;
}

} // namespace qrb
