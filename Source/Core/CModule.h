// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CCreatorTable.h"
#include "Core/CError.h"
#include "Core/CLog.h"
#include "Core/CQrbStdAllocator.h"
#include "Core/CResourceStore.h"
#include "Core/CString.h"

#include <span>

namespace qrb {

namespace platform {
class IFolders;
}

/// What a module brings with it.
struct CModuleConfig {
    CArray<std::span<const CCreatorRow>> creators;              ///< beside the rows of the object runtime itself
    CArray<std::span<const CResourceRow>> resources;            ///< linked-in tables
    CMap<CString, std::span<const std::uint8_t>> resourceBytes; ///< single resources; the bytes stay with the caller
    CString sharedDocument;                ///< document of the shared tree; empty for an empty tree
    platform::IFolders* folders = nullptr; ///< stands for the system's folders if set; stays with the caller
    CLog::FSink logSink;                   ///< gets the lines of the log from the first one on
};

/// Life of the module in a process that may load it several times: entries are counted, the first makes all
/// process-wide state, the last exit destroys it. Entry after exit begins anew. Thread: any.
class CModule {
public:
    /// Only the first entry looks at the configuration. An entry that fails counts for nothing.
    [[nodiscard]] static CErrorPtr enter(const CModuleConfig& config);
    /// One entry more, for what may outlive those of others; false if there is none.
    [[nodiscard]] static bool join();
    /// Every tree but the shared one has been released before the last exit.
    static void leave();
    /// The module's code goes: gives back what it holds of the process beside its entries, and of its threads. No other
    /// thread is inside the library unless entries are left.
    static void unload();
};

} // namespace qrb
