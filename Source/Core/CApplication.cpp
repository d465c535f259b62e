// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CApplication.h"

#include "Core/CCreatorTable.h"
#include "Core/CLog.h"
#include "Core/CModule.h"
#include "Core/CNotifyServer.h"
#include "Core/CNotifyServerRegistry.h"
#include "Core/CObject.h"
#include "Core/CProcessState.h"
#include "Core/CResourceStore.h"
#include "Core/CoreCreators.h"

#include <utility>

namespace qrb {

CErrorPtr CApplication::init(const CModuleConfig& config)
{
    logLine("Initializing application...");
    CProcessState& state = processState();
    QRB_TRY(state.creators->registerCreators(coreCreators()));
    for (const std::span<const CCreatorRow> rows : config.creators)
        QRB_TRY(state.creators->registerCreators(rows));
    for (const std::span<const CResourceRow> rows : config.resources)
        state.resources->addRows(rows);
    for (const auto& [name, bytes] : config.resourceBytes)
        state.resources->add(name, bytes);
    QRB_TRY(initSharedObject(config.sharedDocument));
    return {};
}

CErrorPtr CApplication::initSharedObject(const CString& name)
{
    CProcessState& state = processState();
    if (state.sharedObject != nullptr)
        return QRB_ERROR("@qrbstr_CApplication_initSharedObject Shared object already exists.");
    state.sharedObject = new CObject;
    state.sharedObject->setRoot(nullptr);
    if (!name.empty()) {
        QRB_TRY(state.sharedObject->loadXMLData(name, ERunInit::yes));
        return {};
    }
    QRB_TRY(state.sharedObject->init());
    QRB_TRY(state.sharedObject->initAttrs());
    QRB_TRY(state.sharedObject->initChilds());
    return {};
}

CErrorPtr CApplication::initRootObject(CObject*& out, const CString& name)
{
    out = nullptr;
    CProcessState& state = processState();
    if (state.sharedObject == nullptr)
        return QRB_ERROR("@qrbstr_CApplication_initRootObject No shared object created.");
    auto* const root = new CObject;
    root->setRoot(state.notifyServers->createServer());
    if (!name.empty()) {
        if (CErrorPtr error = root->loadXMLData(name, ERunInit::yes)) {
            root->release();
            return std::move(error).traced(__FILE__, __LINE__, {});
        }
    }
    out = root;
    return {};
}

void CApplication::finalize()
{
    logLine("Finalizing application...");
    CProcessState& state = processState();
    if (CObject* const shared = state.sharedObject) {
        shared->release();
        state.sharedObject = nullptr;
    }
}

} // namespace qrb
