// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Interface/CParamInterfaceClientConnectorUni.h"

#include "Audio/Interface/CParamInterfaceBaseConnectorUni.h"
#include "Audio/Interface/CParamInterfaceExchange.h"
#include "Core/CMemoryReader.h"
#include "Core/CObjectClassInfo.h"
#include "Core/CTimer.h"

#include <utility>

namespace qrb {

CParamInterfaceClientConnectorUni::CParamInterfaceClientConnectorUni() = default;
CParamInterfaceClientConnectorUni::~CParamInterfaceClientConnectorUni() = default;

void CParamInterfaceClientConnectorUni::declare(CObjectClassInfo& info)
{
    CParamInterfaceClientConnector::declare(info);
    info.attr<&CParamInterfaceClientConnectorUni::setFps>("fps");
    info.event<&CParamInterfaceClientConnectorUni::onTick>("tick");
}

CErrorPtr CParamInterfaceClientConnectorUni::init()
{
    QRB_TRY(CParamInterfaceClientConnector::init());
    const CObjectAttr* const base = root().findAttr(kBaseRootAttr);
    CObject* const baseRoot = base != nullptr ? static_cast<CObject*>(base->toPointer()) : nullptr;
    CParamInterfaceBaseConnectorUni* connector = nullptr;
    if (baseRoot != nullptr) {
        QRB_TRY(baseRoot->findObjectChecked(getAttrString("base-connector"), connector));
    } else {
        QRB_TRY(findObjectByAttr("base-connector", connector));
    }
    m_clientId = connector->exchange()->addClient();
    if (m_clientId == 0)
        return QRB_ERROR("@qrbstr_CParamInterfaceClientConnectorUni_init_Count Too many clients.");
    m_exchange = connector->exchange();
    return {};
}

void CParamInterfaceClientConnectorUni::unlink()
{
    if (m_exchange != nullptr)
        m_exchange->removeClient(m_clientId);
    m_exchange.reset();
    CParamInterfaceClientConnector::unlink();
}

CErrorPtr CParamInterfaceClientConnectorUni::setFps(const CObjectAttr& value)
{
    if (m_timer == nullptr) {
        QRB_TRY(createChild(m_timer, getAttrString("timer-tag", "core:timer"), "timer", ERequireTemplate::no));
        listenObject(*m_timer, "tick", "tick");
    }
    return m_timer->setAttrValue("fps", value, ESetter::now);
}

CErrorPtr CParamInterfaceClientConnectorUni::onTick()
{
    // Bounded, should every message bring the next one.
    CByteArray message;
    for (int i = 0; i < kMaxMessagesOfTick && m_exchange != nullptr; ++i) {
        if (!m_exchange->takeMessage(m_clientId, message))
            break;
        QRB_TRY(deliver(std::move(message)));
    }
    return {};
}

CErrorPtr CParamInterfaceClientConnectorUni::send(CByteArray&& message)
{
    if (m_exchange == nullptr)
        return QRB_ERROR("@qrbstr_CParamInterfaceBaseConnector_processClientData_NoBase No base object defined.");
    if (message.size() > kMaxMessageBytes)
        return QRB_ERROR("@qrbstr_CParamInterfaceClientConnectorUni_send_Size A message is too long.");
    CMemoryReader in(std::move(message));
    QRB_TRY(m_exchange->processClientData(in));
    return {};
}

} // namespace qrb
