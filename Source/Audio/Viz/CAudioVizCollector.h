// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamPathTree.h"
#include "Audio/Viz/CAudioVizReader.h"
#include "Core/CObject.h"
#include "Core/CUpdateNotifier.h"
#include "Platform/CRecursiveLock.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace qrb {

class CAudioEnv;
class CAudioParamCollector;
class CAudioParamDef;
class CAudioVizData;
class CAudioVizExport;
class CAudioVizSlotManager;
class CAudioVizSource;
class COutputStream;

/// Engine side of visualisation (tag audio:viz-collector): takes records from the modules of one instance and gives
/// each client those of the sources it listens to. Nothing is made while nobody listens.
///
/// Notifies under the key kExportSlotNames when the names of export slots of any instance have changed.
class CAudioVizCollector : public CObject, public CUpdateNotifier {
public:
    static constexpr std::uint64_t kExportSlotNames = 1;
    /// As the kind of a request: a source of this instance. 0 and more are numbers of export slots.
    static constexpr std::int32_t kOwnInstance = -1;
    /// Most sources that clients may name, and requests that may stand at a time.
    static constexpr std::size_t kMaxListeners = 1024;

    CAudioVizCollector();
    ~CAudioVizCollector() override;

    static void declare(CObjectClassInfo& info);
    CErrorPtr initChilds() override;
    void unlink() override;

    /// The source of a name; made if there is none. Waits for nobody. Thread: any.
    [[nodiscard]] CAudioVizSource& source(const CString& name);

    // Requests of clients, as their messages bring them. Thread: any. The client of a request is in the upper half of
    // its id.

    /// Starts to gather the records of a source for a client. A known id, or one too many, is ignored.
    void listen(std::int32_t kind, const CString& name, std::uint32_t listenerId);
    void unlisten(std::uint32_t listenerId);
    /// Writes what has come for a client since the last time: the stream time, the sources with their records, the end
    /// mark. `now`: the client's clock in seconds, by which its rate is told.
    CErrorPtr writeData(std::uint32_t clientId, double now, COutputStream& out);
    /// Writes the export slots in use: their count, then number and name of each.
    CErrorPtr writeSlotNames(COutputStream& out);
    /// Drops all records that wait, when processing stops. Thread: any.
    void flush();

    [[nodiscard]] CAudioEnv& env() const { return *m_env; }

private:
    friend class CAudioVizSlotManager;

    struct CListener {
        std::int32_t kind = kOwnInstance;
        CString name;
    };

    [[nodiscard]] static std::uint32_t clientOf(std::uint32_t listenerId) { return listenerId >> 16; }
    void addRef(CAudioVizSource& source);
    void removeRef(CAudioVizSource& source);
    void updateEnable(CAudioVizSource& source);
    void joinSlots();
    void gather();
    /// A record that came through a slot, for all clients that listen there.
    void receive(std::int32_t slot, const CString& name, const CAudioVizBlob& record);
    void tellSlotNames();
    void gatherSource(CAudioVizSource& source);
    void updateRate();

    CAudioEnv* m_env = nullptr;
    CAudioParamCollector* m_params = nullptr;
    const CAudioParamDef* m_enableDef = nullptr; ///< null: sources have no enable parameters

    CAudioParamPathTree m_sources; ///< of CAudioVizSource

    platform::CRecursiveLock m_enableLock{50}; ///< keeps writes of enable parameters in order; outside the parameters'
    platform::CRecursiveLock m_lock{50};       ///< guards the next three; the audio thread never takes it
    CMap<std::uint32_t, CListener> m_listeners;
    CMap<std::uint32_t, std::unique_ptr<CAudioVizReader>> m_readers; ///< by client
    std::size_t m_namedCount = 0;                                    ///< sources that exist because a client named them

    CAudioVizSlotManager* m_slots = nullptr;   ///< of the process; null in products without exports
    std::unique_ptr<CAudioVizExport> m_export; ///< null unless this instance may export
};

} // namespace qrb
