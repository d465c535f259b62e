// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CQrbStdAllocator.h"
#include "Platform/CRecursiveLock.h"

#include <cstdint>
#include <memory>

namespace qrb {

class CNotifyServer;

/// Tells the number of a living notify server from a stale one. Thread: any.
class CNotifyServerRegistry : public CCheckedObject {
public:
    [[nodiscard]] std::shared_ptr<CNotifyServer> createServer();
    /// The server of that number, or null if it is gone.
    [[nodiscard]] std::shared_ptr<CNotifyServer> find(std::uint32_t number);
    void remove(std::uint32_t number);

private:
    platform::CRecursiveLock m_lock{4000};
    std::uint32_t m_lastNumber = 0;
    CMap<std::uint32_t, std::weak_ptr<CNotifyServer>> m_servers;
};

} // namespace qrb
