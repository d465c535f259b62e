// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Interface/CParamInterfaceClientConnector.h"

#include "Audio/Interface/CParamInterfaceClient.h"
#include "Core/CMemoryReader.h"
#include "Core/CObjectClassInfo.h"

#include <utility>

namespace qrb {

using platform::CScopedLock;

void CParamInterfaceClientConnector::declare(CObjectClassInfo& info)
{
    CObject::declare(info);
    info.event<&CParamInterfaceClientConnector::onProcessBaseData>("process-base-data");
}

CErrorPtr CParamInterfaceClientConnector::init()
{
    QRB_TRY(CObject::init());
    listenObject(*this, "process-base-data-proxy", "process-base-data");
    return {};
}

void CParamInterfaceClientConnector::setClient(CParamInterfaceClient* client)
{
    const CScopedLock lock(m_clientLock);
    m_client = client;
}

CErrorPtr CParamInterfaceClientConnector::deliver(CByteArray&& message)
{
    {
        const CScopedLock lock(m_listLock);
        m_messages.append(std::move(message));
    }
    return raiseEvent("process-base-data-proxy");
}

CErrorPtr CParamInterfaceClientConnector::onProcessBaseData()
{
    const CScopedLock lock(m_clientLock);
    // Messages keep their order: whoever is at work already works on what has come meanwhile, too.
    if (m_isWorking)
        return {};
    m_isWorking = true;
    CErrorPtr error;
    for (;;) {
        CArray<CByteArray> messages;
        {
            const CScopedLock listLock(m_listLock);
            std::swap(messages, m_messages);
        }
        if (messages.empty())
            break;
        for (CByteArray& message : messages)
            work(std::move(message), error);
    }
    m_isWorking = false;
    return error;
}

void CParamInterfaceClientConnector::work(CByteArray&& message, CErrorPtr& error)
{
    CMemoryReader in(std::move(message));
    if (m_client == nullptr)
        error =
            QRB_ERROR("@qrbstr_CParamInterfaceClientConnector_onProcessBaseData_NoClient No client object defined.");
    else if (CErrorPtr failure = m_client->processMessage(in))
        reportError(std::move(failure));
}

} // namespace qrb
