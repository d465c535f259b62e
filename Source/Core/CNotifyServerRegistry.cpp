// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CNotifyServerRegistry.h"

#include "Core/CNotifyServer.h"

namespace qrb {

std::shared_ptr<CNotifyServer> CNotifyServerRegistry::createServer()
{
    const platform::CScopedLock guard(m_lock);
    std::shared_ptr<CNotifyServer> server(new CNotifyServer(++m_lastNumber));
    m_servers.emplace(server->number(), server);
    return server;
}

std::shared_ptr<CNotifyServer> CNotifyServerRegistry::find(std::uint32_t number)
{
    const platform::CScopedLock guard(m_lock);
    const auto found = m_servers.find(number);
    return found != m_servers.end() ? found->second.lock() : nullptr;
}

void CNotifyServerRegistry::remove(std::uint32_t number)
{
    const platform::CScopedLock guard(m_lock);
    m_servers.erase(number);
}

} // namespace qrb
