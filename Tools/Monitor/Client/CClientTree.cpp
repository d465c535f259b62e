// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Monitor/Client/CClientTree.h"

#include "Audio/Interface/CAudioInterfaceClient.h"
#include "Audio/Interface/CParamInterfaceClientConnectorUni.h"
#include "Audio/Viz/CVizExchange.h"
#include "Core/CApplication.h"
#include "Core/CLoopEventBridge.h"
#include "Core/CStdEventBridge.h"

#include <utility>

namespace monitor {

namespace {

using qrb::CErrorPtr;
using qrb::CObjectAttr;
using qrb::ESetter;

CErrorPtr setRate(qrb::CVizExchange& exchange, qrb::CParamInterfaceClientConnectorUni& connector, double fps)
{
    // In this order, so that answers to what one timer asks for are fetched by the other one in the same turn.
    if (CErrorPtr error = exchange.setAttrValue("fps", CObjectAttr(fps), ESetter::now))
        return error;
    return connector.setAttrValue("fps", CObjectAttr(fps), ESetter::now);
}

} // namespace

CClientTree::CClientTree() = default;

CClientTree::~CClientTree()
{
    if (m_root != nullptr)
        m_root->release();
}

bool CClientTree::build(qrb::CObject& instanceRoot, qrb::platform::CMessageLoop& loop, double fps, std::string& error)
{
    qrb::CStdEventBridge* handler = nullptr;
    CErrorPtr failed = qrb::CApplication::initRootObject(m_root, {});
    if (!failed) {
        m_root->setEventBridge(nullptr);
        failed = m_root->setAttrValue(qrb::CParamInterfaceClientConnectorUni::kBaseRootAttr,
                                      CObjectAttr::pointer(&instanceRoot), ESetter::now);
    }
    if (!failed)
        failed = m_root->loadXMLData(kDocument, qrb::ERunInit::yes);
    if (!failed)
        failed = m_root->findObjectChecked("bridge", handler);
    if (!failed)
        failed = m_root->findObjectChecked("client", m_client);
    if (!failed)
        failed = m_root->findObjectChecked("connector", m_connector);
    if (!failed)
        failed = m_root->findObjectChecked("viz-exchange", m_exchange);
    if (!failed) {
        m_bridge = std::make_unique<qrb::CLoopEventBridge>(loop, *handler);
        m_root->setEventBridge(m_bridge.get());
        failed = setRate(*m_exchange, *m_connector, fps);
    }
    if (failed)
        error = "the instance cannot be watched: " + failed->line(0).toUtf8();
    return !failed;
}

void CClientTree::fetch()
{
    if (qrb::CErrorPtr failed = m_connector->onTick())
        qrb::reportError(std::move(failed));
}

} // namespace monitor
