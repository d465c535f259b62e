// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CObject.h"

#include <cstdint>

namespace qrb {

class CInputStream;
class CParamInterfaceBase;

/// Engine end of the way between an interface base and its clients, whatever carries the messages. Each client has a
/// number from 1 to 65535.
class CParamInterfaceBaseConnector : public CObject {
public:
    /// As the number of a client: all of them.
    static constexpr std::uint32_t kAllClients = 0xffffffff;

    static void declare(CObjectClassInfo& info);

    /// Sets who gets the messages of clients, or nobody; waits for a message that is under way. Thread: any.
    virtual void setBase(CParamInterfaceBase* base) = 0;
    /// Whether there is a client of that number. Thread: any.
    [[nodiscard]] virtual bool hasClient(std::uint32_t clientId) const = 0;
    /// Sends a message to a client or to all; one for a client that is gone is dropped. Waits for nobody, and runs
    /// nothing of the client's. Thread: any.
    virtual void send(std::uint32_t clientId, CByteArray&& message) = 0;
    /// Has the base carry out a message of a client, and gives its answer. Thread: any.
    virtual CErrorPtr processClientData(CInputStream& in) = 0;
};

} // namespace qrb
