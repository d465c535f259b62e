// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CProcessState.h"

#include "Core/CAppData.h"
#include "Core/CCreatorTable.h"
#include "Core/CLog.h"
#include "Core/CNotifierTable.h"
#include "Core/CNotifyServerRegistry.h"
#include "Core/CResourceStore.h"
#include "Core/CTimerTable.h"
#include "Core/CWorkerThreadPool.h"
#include "Platform/CBlockTransformPool.h"
#include "Platform/CRealFFTPool.h"
#include "Platform/Clock.h"
#include "Platform/Folders.h"

#include <cassert>

namespace qrb {

namespace {

constinit std::atomic<CProcessState*> g_state{nullptr};

} // namespace

CProcessState::CProcessState()
    : m_publication(*this), log(new CLog), ownFolders(new platform::CSystemFolders), folders(ownFolders.get()),
      clockBase(platform::clockSeconds()), notifyServers(new CNotifyServerRegistry), resources(new CResourceStore),
      creators(new CCreatorTable), blockTransforms(new platform::CBlockTransformPool),
      fftPlans(new platform::CRealFFTPool)
{
    // From here on, since notifiers enter themselves in the state.
    notifiers = std::make_unique<CNotifierTable>();
    appDataGlobal = std::make_unique<CAppDataGlobal>();
    appDataGroup = std::make_unique<CAppDataGroup>();
    appDataLocal = std::make_unique<CAppDataLocal>();
    timers = std::make_unique<CTimerTable>();
    workers = std::make_unique<CWorkerThreadPool>();
}

CProcessState::~CProcessState() = default;

CProcessState::CPublication::CPublication(CProcessState& state)
{
    g_state.store(&state, std::memory_order_release);
}

CProcessState::CPublication::~CPublication()
{
    g_state.store(nullptr, std::memory_order_release);
}

CProcessState& processState()
{
    CProcessState* const state = processStateOrNull();
    assert(state != nullptr);
    return *state;
}

CProcessState* processStateOrNull()
{
    return g_state.load(std::memory_order_acquire);
}

} // namespace qrb
