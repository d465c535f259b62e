// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>

namespace qrb {
class CAudioInterfaceClient;
class CLoopEventBridge;
class CObject;
class CParamInterfaceClientConnectorUni;
class CVizExchange;
namespace platform {
class CMessageLoop;
}
} // namespace qrb

namespace monitor {

/// The object tree of an editor: a client of an instance's interface, on the thread that builds it. All it knows of the
/// instance is where its tree begins; everything else is messages.
class CClientTree {
public:
    /// Name of the document that declares the tree.
    static constexpr const char* kDocument = "Monitor.xml";

    CClientTree();
    ~CClientTree();
    CClientTree(const CClientTree&) = delete;
    CClientTree& operator=(const CClientTree&) = delete;

    /// Builds the tree and has it fetch what the instance tells `fps` times a second on the loop, which outlives it and
    /// tells the time. False with one line in `error`.
    [[nodiscard]] bool build(qrb::CObject& instanceRoot, qrb::platform::CMessageLoop& loop, double fps,
                             std::string& error);

    /// Takes in what the instance has told so far, ahead of the timer: before something is done that builds upon it.
    void fetch();

    [[nodiscard]] qrb::CAudioInterfaceClient& client() const { return *m_client; }
    [[nodiscard]] qrb::CVizExchange& exchange() const { return *m_exchange; }

private:
    std::unique_ptr<qrb::CLoopEventBridge> m_bridge;
    qrb::CObject* m_root = nullptr; // released before the bridge goes
    qrb::CParamInterfaceClientConnectorUni* m_connector = nullptr;
    qrb::CAudioInterfaceClient* m_client = nullptr;
    qrb::CVizExchange* m_exchange = nullptr;
};

} // namespace monitor
