// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamGuard.h"
#include "Audio/CAudioParamInfo.h"
#include "Audio/CAudioParamPathEntry.h"
#include "Audio/CAudioParamReader.h"
#include "Audio/CAudioParamStorage.h"
#include "Audio/CAudioParamUpdate.h"
#include "Audio/CAudioParamUpdateRecord.h"
#include "Core/CArray.h"
#include "Core/CString.h"

#include <atomic>

namespace qrb {

class CAudioParamCollector;
class CAudioParamFilter;
class CAudioParamUndoEntry;
class CAudioParamUpdateList;

/// How a change goes to the audio side, and what gesture it belongs to. All that follows from a change goes the same way.
struct CAudioParamRoute {
    /// Changes pile up here and are spliced into the queue in one step. Null: the collector's queue.
    CAudioParamUpdateList* deferredList = nullptr;
    /// Applies the change to what modules read at once. Thread: audio, or any while no audio runs.
    bool isImmediate = false;
    /// Notes the groups of storable and persistent parameters before and after the change. Null: no history.
    CAudioParamUndoEntry* undo = nullptr;
};

/// A parameter of one instance. Owned by the collector, made on first request of its path, unbound: changes to it are
/// dropped until it gets the description of a definition.
///
/// Thread: any, unless told otherwise; calls that take a guard use the caller's, the others make their own.
class CAudioParam : public CAudioParamPathEntry {
public:
    CAudioParam(CAudioParamCollector& collector, const CString& path);

    [[nodiscard]] CAudioParamCollector& collector() const { return m_collector; }
    /// The description, or null while unbound.
    [[nodiscard]] const CAudioParamInfo* info() const { return m_info.load(std::memory_order_acquire); }
    [[nodiscard]] bool isBound() const { return info() != nullptr; }

    /// Takes a description that outlives the instance over and pushes its defaults; an equal one changes nothing and takes
    /// no lock.
    void bindInfo(const CAudioParamInfo& info, const void* source = nullptr, const CAudioParamRoute& route = {});

    /// The one way in for changes. False if the record was dropped because it does not fit.
    bool update(const CAudioParamUpdate& record, const CAudioParamRoute& route = {});
    bool update(const CAudioParamUpdate& record, const CAudioParamGuard& guard, const CAudioParamRoute& route = {});
    /// Element 0 of group 0, which is all of a single-group, single-element number.
    bool setValue(double value, const void* source = nullptr, const CAudioParamRoute& route = {});
    /// All components of one element, number parameters only.
    bool setElement(std::int32_t group, std::int32_t element, std::span<const double> components,
                    const void* source = nullptr, const CAudioParamRoute& route = {});
    bool setElement(std::int32_t group, std::int32_t element, double value, const void* source = nullptr,
                    const CAudioParamRoute& route = {});
    /// The same without waiting and, for elements that exist, without an allocation; listeners are told later, from the
    /// owner's thread. False if the parameters are held elsewhere just now: try again with the next sub-block.
    /// Thread: audio.
    [[nodiscard]] bool trySetElement(std::int32_t group, std::int32_t element, double value,
                                     const void* source = nullptr);
    /// Do nothing unless the parameter is of that type.
    bool setString(std::int32_t group, std::int32_t element, const CString& text, const void* source = nullptr,
                   const CAudioParamRoute& route = {});
    bool setRaw(std::int32_t group, std::int32_t element, std::span<const std::uint8_t> bytes,
                const void* source = nullptr, const CAudioParamRoute& route = {});

    /// Where a reset takes its values from: its own place, or the first group and the first element.
    enum class EResetFrom { samePlace, firstElement };
    /// Returns to the reset values: all groups (group -1), a whole group (element -1) or one element.
    void resetValues(std::int32_t group, std::int32_t element, EResetFrom from = EResetFrom::samePlace,
                     const CAudioParamRoute& route = {});

    /// What editors see and presets hold; valid while the guard stands.
    [[nodiscard]] const CAudioParamStorage& editStorage(const CAudioParamGuard& guard) const;
    /// What a reset returns to; valid while the guard stands.
    [[nodiscard]] const CAudioParamStorage& resetStorage(const CAudioParamGuard& guard) const;
    /// What modules read. Thread: audio, or any while no audio runs.
    [[nodiscard]] const CAudioParamStorage& audioStorage() const { return m_audio; }
    /// A number of the edit storage, under a guard of its own.
    [[nodiscard]] double value(std::int32_t group = 0, std::int32_t element = 0, std::int32_t component = 0,
                               double fallback = 0.0) const;
    [[nodiscard]] CString text(std::int32_t group = 0, std::int32_t element = 0) const;

    /// Asks to be told about changes: `*dirtyFlag` becomes 1 and the bits of changed groups join in `*outMask` until
    /// who asked clears them. Group and element -1 mean all. `*outMask` starts with the groups that have data.
    /// Thread: audio, or any while no audio runs; takes memory from the reader pool only, and no lock.
    CAudioParamReader* attachReader(const CAudioParamStorage*& outStorage, std::uint8_t* dirtyFlag,
                                    std::uint32_t* outMask, std::int32_t group, std::int32_t element);
    /// Thread: as attachReader(). Null does nothing.
    void detachReader(CAudioParamReader* reader);

    /// Has all that is derived from the parameter follow a change which is in place; update() does so by itself.
    void runFilters(const CAudioParamUpdate& record, const CAudioParamGuard& guard, const CAudioParamRoute& route = {});
    /// Has a filter run for everything that is here now and for each change to come. It leaves before it goes.
    void attachFilter(CAudioParamFilter& filter, const CAudioParamGuard& guard, const CAudioParamRoute& route = {});
    void detachFilter(const CAudioParamFilter& filter, const CAudioParamGuard& guard);

    /// Writes the path of the definition and the values of one group, or of all (-1).
    CErrorPtr save(COutputStream& out, std::int32_t group = -1) const;

    /// What of a saved parameter is loaded, and where to.
    struct CLoadPlace {
        bool isReset = false;      ///< into the reset values, whole
        std::int32_t group = -1;   ///< -1: all groups; else the first group of the data goes there
        std::int32_t element = -1; ///< -1: the whole group; else its first element goes there
        bool isToEnd = false;      ///< whether that element ends the group
    };
    /// Reads what save() wrote. Everything stays as it was on failure.
    CErrorPtr load(std::span<const std::uint8_t> data, const CLoadPlace& place, const void* source = nullptr,
                   const CAudioParamRoute& route = {});
    /// The first half of that, which changes no parameter: the values of one of that description, within its bounds.
    static CErrorPtr readSaved(std::span<const std::uint8_t> data, const CAudioParamInfo& info,
                               CAudioParamStorage& values);
    /// The second half: puts values of the parameter's own shape in place. It cannot fail.
    void loadValues(CAudioParamStorage&& values, const CLoadPlace& place, const void* source = nullptr,
                    const CAudioParamRoute& route = {});
    /// Returns the place that data would be loaded to, other than the reset values, to these.
    void resetPlace(const CLoadPlace& place, const void* source = nullptr, const CAudioParamRoute& route = {});

private:
    friend class CAudioParamCollector;

    [[nodiscard]] const CString& fullName() const { return path(); }

    bool updateHeld(const CAudioParamUpdate& record, const CAudioParamGuard& guard, const CAudioParamRoute& route);
    /// The entry of the route, if the parameter is of those that a history holds.
    [[nodiscard]] CAudioParamUndoEntry* undoOf(const CAudioParamRoute& route) const;
    bool updateWithGap(const CAudioParamUpdate& record, const CAudioParamGuard& guard, const CAudioParamRoute& route);
    bool updateFinite(const CAudioParamUpdate& record, const CAudioParamGuard& guard, const CAudioParamRoute& route);
    void afterEdit(const CAudioParamUpdate& record, const CAudioParamGuard& guard, const CAudioParamRoute& route);
    void send(const CAudioParamUpdate& record, const CAudioParamGuard& guard, const CAudioParamRoute& route);
    void prepareRoom(CAudioParamUpdateRecord& record, bool isDeferred);
    void tell(const CAudioParamUpdate& record, const CAudioParamGuard& guard);
    [[nodiscard]] bool isBoundLike(const CAudioParamInfo& info) const;
    bool setItem(EAudioParamType type, std::int32_t group, std::int32_t element, const CAudioParamData& data,
                 std::int32_t key, const void* source, const CAudioParamRoute& route);
    void replaceGroup(std::int32_t group, const CAudioParamStorage& from, std::int32_t fromGroup,
                      const CAudioParamGuard& guard, const void* source, const CAudioParamRoute& route);
    void resetAll(const CAudioParamGuard& guard, const void* source, const CAudioParamRoute& route);
    void resetElement(const CLoadPlace& place, EResetFrom from, const CAudioParamGuard& guard, const void* source,
                      const CAudioParamRoute& route);
    [[nodiscard]] bool isPlaceSeen(const CLoadPlace& place) const;
    [[nodiscard]] std::int32_t defaultCount() const;
    void copyElement(std::int32_t group, std::int32_t element, const CAudioParamStorage& from,
                     std::span<const double> cells, bool isToEnd, const CAudioParamGuard& guard, const void* source,
                     const CAudioParamRoute& route);
    void loadAll(CAudioParamStorage&& values, const CAudioParamGuard& guard, const void* source,
                 const CAudioParamRoute& route);
    void loadPart(const CAudioParamStorage& values, const CLoadPlace& place, const CAudioParamGuard& guard,
                  const void* source, const CAudioParamRoute& route);
    void growTemplate(const CAudioParamStorage& from, std::span<const double> element, bool isToEnd,
                      const CAudioParamGuard& guard, const void* source, const CAudioParamRoute& route);
    /// Applies a record to what modules read and tells the readers. Thread: audio, or any while no audio runs.
    void applyToAudio(CAudioParamUpdateRecord& record);

    CAudioParamCollector& m_collector;
    std::atomic<const CAudioParamInfo*> m_info{nullptr};
    CAudioParamStorage m_edit;
    CAudioParamStorage m_reset;
    CArray<CAudioParamFilter*, 2> m_filters; ///< guarded by the parameter lock
    CAudioParamReader* m_readers = nullptr;
    CAudioParamStorage m_audio;
    CAudioParamQueueAnchor m_anchor;
    /// For how many cells each group of the audio storage will have room, and for how many groups its table, once the
    /// queue is applied. Guarded by the parameter lock.
    CArray<std::size_t, 1> m_sentCells;
    std::size_t m_sentGroups = 1;
};

} // namespace qrb
