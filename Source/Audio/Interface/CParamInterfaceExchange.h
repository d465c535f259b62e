// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Interface/CParamInterfaceIds.h"
#include "Audio/Interface/CParamInterfaceQueue.h"
#include "Core/CError.h"
#include "Platform/CRecursiveLock.h"

#include <cstdint>
#include <memory>

namespace qrb {

class CInputStream;
class CParamInterfaceBase;

/// Where the two ends of an interface within one process meet. Held by both, so that it outlives whichever goes first.
/// Messages to the base are carried out on the sender's thread, one at a time; messages to a client wait in a queue.
/// Thread: any.
class CParamInterfaceExchange : public CCheckedObject {
public:
    /// Sets who gets the messages of clients, or nobody; waits for a message that is under way.
    void setBase(CParamInterfaceBase* base);
    CErrorPtr processClientData(CInputStream& in);

    /// The number of a new client, from 1; 0 if there are too many.
    [[nodiscard]] std::uint32_t addClient();
    /// Has the base forget a client, and frees its queue.
    void removeClient(std::uint32_t clientId);
    [[nodiscard]] bool hasClient(std::uint32_t clientId) const;

    /// Queues a message for a client, or for all.
    void send(std::uint32_t clientId, CByteArray&& message);
    /// The next message for a client; false if none waits. If messages had to be dropped, the base is asked to tell
    /// everything anew.
    [[nodiscard]] bool takeMessage(std::uint32_t clientId, CByteArray& out);
    /// Bytes that wait for a client.
    [[nodiscard]] std::size_t waitingBytes(std::uint32_t clientId) const;

private:
    [[nodiscard]] static CString fullName() { return {}; }
    [[nodiscard]] CParamInterfaceQueue* findQueue(std::uint32_t clientId) const;

    /// Held while the base works for a client: outermost of all locks.
    platform::CRecursiveLock m_connectorLock{4000};
    CParamInterfaceBase* m_base = nullptr;

    /// Held for a few instructions, innermost of all locks; guards what follows.
    mutable platform::CRecursiveLock m_queueLock{50};
    CParamInterfaceIds m_clientIds;
    CMap<std::uint32_t, std::unique_ptr<CParamInterfaceQueue>> m_queues;
};

} // namespace qrb
