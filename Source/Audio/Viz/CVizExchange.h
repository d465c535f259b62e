// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Viz/CAudioInterfaceVizProcessor.h"
#include "Audio/Viz/CAudioVizData.h"
#include "Audio/Viz/CVizListener.h"
#include "Core/CArray.h"
#include "Core/CObject.h"
#include "Core/CQrbStdAllocator.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <utility>

namespace qrb {

class CAudioInterfaceVizRequests;
class CTimer;

/// Editor side of visualisation (tag ui:viz-exchange): fetches records on a timer, holds each back until its time has
/// come, and hands it to who listens to its source. Raises "export-slot-names-changed".
class CVizExchange : public CObject, public CAudioInterfaceVizProcessor {
public:
    /// As the kind of a source: one of the instance that the editor belongs to.
    static constexpr std::int32_t kOwnInstance = -1;
    /// Most records that are held back; more of them are delivered early.
    static constexpr std::size_t kMaxPending = 4096;
    static constexpr std::int32_t kMaxSlotNames = 1024;

    CVizExchange();
    ~CVizExchange() override;

    static void declare(CObjectClassInfo& info);
    CErrorPtr init() override;
    CErrorPtr initChilds() override;
    void unlink() override;

    [[nodiscard]] virtual CErrorPtr setFps(const CObjectAttr& value);
    [[nodiscard]] CErrorPtr onTick();

    /// Starts to deliver the records of a source to a listener, not owned, that removes itself before it goes. It is
    /// told when none have come for `inactiveTimeout` seconds; below 0.01 the exchange's own time counts. `kind`:
    /// kOwnInstance, or the export slot that the records come through.
    std::int32_t addListener(const CString& name, CVizListener& listener, double inactiveTimeout,
                             std::int32_t kind = kOwnInstance);
    void removeListener(std::int32_t handle);
    /// The names come later, with the event.
    void requestExportSlotNames();
    /// Names of the export slots in use, by number, as they came last.
    [[nodiscard]] const CMap<std::int32_t, CString>& exportSlotNames() const { return m_slotNames; }
    /// One turn of the timer at `now`, seconds of any steady clock: idle listeners are told, records are asked for.
    void tick(double now);

    CErrorPtr onStartViz() override;
    CErrorPtr onStopViz() override;
    CErrorPtr onClearClient() override;
    CErrorPtr onVizData(CInputStream& in) override;
    CErrorPtr onExportSlotNames(CInputStream& in) override;

private:
    struct CEntry {
        CVizListenerEntry told;
        CVizListener* listener = nullptr; ///< null: removed while calls were under way
        double inactiveTimeout = 0.0;
        std::int64_t ticks = 0; ///< since the last record
        bool isIdle = false;
    };
    struct CRequest {
        std::int32_t id = 0;
        std::int32_t listenerCount = 0;
        bool isSent = false;
    };
    struct CPending {
        CString name;
        std::unique_ptr<CAudioVizData> data;
    };
    using CKey = std::pair<std::int32_t, CString>;
    using CPendingMap =
        std::multimap<double, CPending, std::less<>, CQrbStdAllocator<std::pair<const double, CPending>>>;

    /// Calls `call(entry)` for each listener; they may come and go meanwhile.
    template <class F>
    void forEachEntry(const F& call);
    void setIdle(CEntry& entry);
    void sendRequest(const CKey& key, CRequest& request);
    void deliver(const CString& name, const CAudioVizData& data);
    void deliverDue(double time);
    void deliverFirst();
    CErrorPtr readSource(CInputStream& in, std::int32_t count, double time);
    CErrorPtr readRecord(CInputStream& in, std::unique_ptr<CAudioVizData>& out);

    CAudioInterfaceVizRequests* m_client = nullptr;
    CTimer* m_timer = nullptr; ///< a child
    double m_fps = 0.0;
    double m_inactiveTimeout = 0.5; ///< seconds
    std::int32_t m_lastHandle = 0;
    std::int32_t m_callDepth = 0;
    CArray<std::unique_ptr<CEntry>> m_entries;
    CMap<CKey, CRequest> m_requests;
    CPendingMap m_pending; ///< records whose time has not come
    CMap<std::int32_t, CString> m_slotNames;
};

} // namespace qrb
