// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Interface/CParamInterfaceBaseConnectorUni.h"

#include "Audio/Interface/CParamInterfaceExchange.h"

#include <utility>

namespace qrb {

void CParamInterfaceBaseConnectorUni::declare(CObjectClassInfo& info)
{
    CParamInterfaceBaseConnector::declare(info);
}

CParamInterfaceBaseConnectorUni::CParamInterfaceBaseConnectorUni()
    : m_exchange(std::make_shared<CParamInterfaceExchange>())
{
}

CParamInterfaceBaseConnectorUni::~CParamInterfaceBaseConnectorUni() = default;

void CParamInterfaceBaseConnectorUni::unlink()
{
    setBase(nullptr);
    CParamInterfaceBaseConnector::unlink();
}

void CParamInterfaceBaseConnectorUni::setBase(CParamInterfaceBase* base)
{
    m_exchange->setBase(base);
}

bool CParamInterfaceBaseConnectorUni::hasClient(std::uint32_t clientId) const
{
    return m_exchange->hasClient(clientId);
}

void CParamInterfaceBaseConnectorUni::send(std::uint32_t clientId, CByteArray&& message)
{
    m_exchange->send(clientId, std::move(message));
}

CErrorPtr CParamInterfaceBaseConnectorUni::processClientData(CInputStream& in)
{
    return m_exchange->processClientData(in);
}

} // namespace qrb
