// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Interface/CParamInterfaceClientConnector.h"

#include <memory>

namespace qrb {

class CParamInterfaceExchange;
class CTimer;

/// Editor end within one process (tag other:param-interface-client-connector-uni): fetches messages on a timer. The base
/// connector is looked for in the tree of the object that the root's attribute "BaseConnectorRootPtr" points at, or else
/// in the own tree.
class CParamInterfaceClientConnectorUni : public CParamInterfaceClientConnector {
public:
    /// Attribute of the root: an object of the tree in which the base connector stands, as a pointer.
    static constexpr const char* kBaseRootAttr = "BaseConnectorRootPtr";
    /// Most bytes of a message to the base.
    static constexpr std::size_t kMaxMessageBytes = std::size_t{64} << 20;
    static constexpr int kMaxMessagesOfTick = 65536;

    CParamInterfaceClientConnectorUni();
    ~CParamInterfaceClientConnectorUni() override;

    static void declare(CObjectClassInfo& info);
    CErrorPtr init() override;
    void unlink() override;

    [[nodiscard]] virtual CErrorPtr setFps(const CObjectAttr& value);
    [[nodiscard]] CErrorPtr onTick();

    [[nodiscard]] std::uint32_t clientId() const override { return m_clientId; }
    CErrorPtr send(CByteArray&& message) override;

private:
    std::shared_ptr<CParamInterfaceExchange> m_exchange; ///< null before init
    std::uint32_t m_clientId = 0;
    CTimer* m_timer = nullptr; ///< a child
};

} // namespace qrb
