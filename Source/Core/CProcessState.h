// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CString.h"
#include "Platform/CRecursiveLock.h"

#include <atomic>
#include <cstdint>
#include <memory>

namespace qrb {

class CAppDataGlobal;
class CAppDataGroup;
class CAppDataLocal;
class CCreatorTable;
class CLog;
class CNotifierTable;
class CNotifyServerRegistry;
class CObject;
class CResourceStore;
class CWorkerThreadPool;
struct CTimerTable;
namespace platform {
class CBlockTransformPool;
class CRealFFTPool;
class IFolders;
} // namespace platform

/// Everything that exists once in a process, made by the first module entry and destroyed by the last exit, in the
/// reverse order of the rows. An area adds its row here: a forward declaration above, the include in the .cpp file.
class CProcessState : public CCheckedObject {
    /// Makes processState() give this object as long as any row stands.
    struct CPublication {
        explicit CPublication(CProcessState& state);
        ~CPublication();
    };
    CPublication m_publication;

public:
    CProcessState();
    ~CProcessState() override;

    std::unique_ptr<CLog> log;
    std::unique_ptr<platform::IFolders> ownFolders;
    platform::IFolders* folders = nullptr; ///< the system's, or those handed in at module entry
    CString moduleFolder;                  ///< with "/" at its end; empty if unknown
    double clockBase = 0.0;                ///< clockSeconds() at module entry
    std::atomic<std::uint32_t> denormSeed{1};
    std::unique_ptr<CNotifyServerRegistry> notifyServers;
    std::unique_ptr<CResourceStore> resources;
    std::unique_ptr<CCreatorTable> creators;
    std::unique_ptr<CNotifierTable> notifiers; ///< which update notifiers live
    std::unique_ptr<CAppDataGlobal> appDataGlobal;
    std::unique_ptr<CAppDataGroup> appDataGroup;
    std::unique_ptr<CAppDataLocal> appDataLocal;
    std::unique_ptr<CTimerTable> timers;
    std::unique_ptr<CWorkerThreadPool> workers;
    std::unique_ptr<platform::CBlockTransformPool> blockTransforms;
    std::unique_ptr<platform::CRealFFTPool> fftPlans;
    CObject* sharedObject = nullptr; ///< root of the shared tree; released by CApplication::finalize
};

/// The state of this process. Only between module entry and exit. Thread: any.
[[nodiscard]] CProcessState& processState();
/// The same for code that also runs outside; null there. Thread: any.
[[nodiscard]] CProcessState* processStateOrNull();

} // namespace qrb
