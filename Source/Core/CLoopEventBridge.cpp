// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CLoopEventBridge.h"

#include "Core/CObjectEventBridgeHandler.h"
#include "Platform/CMessageLoop.h"

namespace qrb {

CLoopEventBridge::CLoopEventBridge(platform::CMessageLoop& loop, CObjectEventBridgeHandler& handler)
    : m_loop(loop), m_target(std::make_shared<CTarget>(CTarget{&handler}))
{
}

CLoopEventBridge::~CLoopEventBridge()
{
    m_target->handler = nullptr;
}

CErrorPtr CLoopEventBridge::post(const CEventArgs& args)
{
    m_loop.post([target = m_target, args] {
        if (target->handler == nullptr)
            return;
        if (CErrorPtr error = target->handler->handlePostedEvent(args))
            reportError(std::move(error));
    });
    return nullptr;
}

} // namespace qrb
