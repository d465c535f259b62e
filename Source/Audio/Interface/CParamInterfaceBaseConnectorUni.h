// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Interface/CParamInterfaceBaseConnector.h"

#include <memory>

namespace qrb {

class CParamInterfaceExchange;

/// Engine end within one process (tag other:param-interface-base-connector-uni).
class CParamInterfaceBaseConnectorUni : public CParamInterfaceBaseConnector {
public:
    CParamInterfaceBaseConnectorUni();
    ~CParamInterfaceBaseConnectorUni() override;

    static void declare(CObjectClassInfo& info);
    void unlink() override;

    void setBase(CParamInterfaceBase* base) override;
    [[nodiscard]] bool hasClient(std::uint32_t clientId) const override;
    void send(std::uint32_t clientId, CByteArray&& message) override;
    CErrorPtr processClientData(CInputStream& in) override;

    /// What both ends hold on to, so that either may go first.
    [[nodiscard]] const std::shared_ptr<CParamInterfaceExchange>& exchange() const { return m_exchange; }

private:
    const std::shared_ptr<CParamInterfaceExchange> m_exchange;
};

} // namespace qrb
