// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CObjectEventBridge.h"

#include <memory>

namespace qrb {

class CObjectEventBridgeHandler;
namespace platform {
class CMessageLoop;
}

/// Carries events to the thread of a message loop, where the handler runs them in a later turn. Made and destroyed on
/// that thread; events under way at the end are dropped. An error of the handler is reported.
class CLoopEventBridge : public CCheckedObject, public CObjectEventBridge {
public:
    /// Both outlive the bridge.
    CLoopEventBridge(platform::CMessageLoop& loop, CObjectEventBridgeHandler& handler);
    CLoopEventBridge(const CLoopEventBridge&) = delete;
    CLoopEventBridge& operator=(const CLoopEventBridge&) = delete;
    ~CLoopEventBridge() override;

    /// Thread: any.
    [[nodiscard]] CErrorPtr post(const CEventArgs& args) override;

private:
    struct CTarget {
        CObjectEventBridgeHandler* handler;
    };

    platform::CMessageLoop& m_loop;
    std::shared_ptr<CTarget> m_target; ///< messages hold it; emptied by the destructor
};

} // namespace qrb
