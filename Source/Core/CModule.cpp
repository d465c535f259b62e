// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CModule.h"

#include "Core/CApplication.h"
#include "Core/CPathText.h"
#include "Core/CProcessState.h"
#include "Core/CQrbMemAllocator.h"
#include "Platform/Folders.h"

#include <memory>
#include <mutex>

namespace qrb {

namespace {

constinit std::mutex g_lock;
unsigned g_entries = 0;
CProcessState* g_ownState = nullptr; // owned; no static object, whose destructor would run at a time not ours

void destroyState()
{
    CApplication::finalize();
    delete g_ownState;
    g_ownState = nullptr;
}

} // namespace

CErrorPtr CModule::enter(const CModuleConfig& config)
{
    const std::lock_guard guard(g_lock);
    if (g_entries > 0) {
        ++g_entries;
        return {};
    }
    g_ownState = new CProcessState;
    g_ownState->log->setSink(config.logSink);
    if (config.folders != nullptr)
        g_ownState->folders = config.folders;
    g_ownState->moduleFolder = pathFromBytes(g_ownState->folders->modulePath());
    if (!g_ownState->moduleFolder.empty() && !g_ownState->moduleFolder.endsWith("/"))
        g_ownState->moduleFolder += "/";
    if (CErrorPtr error = CApplication::init(config)) {
        destroyState();
        return std::move(error).traced(__FILE__, __LINE__, {});
    }
    g_entries = 1;
    return {};
}

bool CModule::join()
{
    const std::lock_guard guard(g_lock);
    if (g_entries == 0)
        return false;
    ++g_entries;
    return true;
}

void CModule::leave()
{
    const std::lock_guard guard(g_lock);
    if (g_entries == 0 || --g_entries > 0)
        return;
    destroyState();
    // What still lives, such as a text of the caller, stays usable.
    CQrbMemAllocator::destroyAllIfAlone();
}

void CModule::unload()
{
    // A process that ends unloads as well, with threads that may still be at work.
    const std::unique_lock guard(g_lock, std::try_to_lock);
    if (guard && g_entries == 0)
        CQrbMemAllocator::leaveProcess();
    else
        CQrbMemAllocator::leaveThreads();
}

} // namespace qrb
