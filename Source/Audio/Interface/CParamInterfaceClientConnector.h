// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CObject.h"
#include "Platform/CRecursiveLock.h"

#include <cstdint>

namespace qrb {

class CParamInterfaceClient;

/// Editor end of the way between an interface base and one client, whatever carries the messages.
/// Thread: the owner's, unless told otherwise.
class CParamInterfaceClientConnector : public CObject {
public:
    static void declare(CObjectClassInfo& info);
    CErrorPtr init() override;

    /// The client's number; 0 before it has got one.
    [[nodiscard]] virtual std::uint32_t clientId() const = 0;
    /// Has the base carry out a message, and gives its answer. Thread: any.
    virtual CErrorPtr send(CByteArray&& message) = 0;
    /// Sets who gets the messages of the base, or nobody; waits for messages that are being worked on. Thread: any.
    void setClient(CParamInterfaceClient* client);

    /// Has the client work on all messages that have been delivered. One that fails is reported.
    [[nodiscard]] CErrorPtr onProcessBaseData();

protected:
    /// A message of the base has come.
    CErrorPtr deliver(CByteArray&& message);

private:
    void work(CByteArray&& message, CErrorPtr& error);

    platform::CRecursiveLock m_clientLock{4000}; ///< held while messages are worked on; outside all locks of the engine
    CParamInterfaceClient* m_client = nullptr;
    bool m_isWorking = false;

    platform::CRecursiveLock m_listLock{50};
    CArray<CByteArray> m_messages; ///< delivered, not worked on yet
};

} // namespace qrb
