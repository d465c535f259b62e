// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamStorage.h"
#include "Audio/CAudioParamUpdate.h"
#include "Core/CArray.h"

#include <cstddef>

namespace qrb {

class CAudioParam;
class CAudioParamUpdateRecord;

/// Chains the waiting records of one parameter, newest first. Guarded by the lock of the queue that it is used with.
struct CAudioParamQueueAnchor {
    CAudioParamUpdateRecord* newest = nullptr;
    std::uint64_t epoch = 0; ///< filling of the queue that `newest` belongs to; another one means none
};

/// One change on its way to the audio side, with everything that applying it there needs: its own values and items, and
/// room for what grows. What it replaces goes back into it and is freed off the audio thread.
class CAudioParamUpdateRecord : public CCheckedObject {
public:
    /// Largest array of values that is kept for the next use.
    static constexpr std::size_t kKeptCells = 64;

    CAudioParamUpdateRecord() = default;
    CAudioParamUpdateRecord(const CAudioParamUpdateRecord&) = delete;
    CAudioParamUpdateRecord& operator=(const CAudioParamUpdateRecord&) = delete;

    /// Copies a change, its values and items. Allocates nothing for numbers that fit the room of an earlier use.
    void set(CAudioParam* param, CAudioParamQueueAnchor* anchor, const CAudioParamUpdate& update);
    /// Puts room for a group of `cellCount` cells and for a table of `groupCount` groups into the record.
    void prepareRoom(std::size_t cellCount, std::size_t groupCount);
    /// Takes on the union with a later change of the same group and format whose range touches this one's; the later
    /// values win.
    void merge(CAudioParamUpdateRecord& later);
    /// Takes the larger room of the two.
    void takeRoom(CAudioParamUpdateRecord& other);
    /// Whether that later change of the same parameter leaves nothing of this one.
    [[nodiscard]] bool isCoveredBy(const CAudioParamUpdateRecord& later) const;
    /// Whether the ranges overlap or touch.
    [[nodiscard]] bool touches(const CAudioParamUpdateRecord& other) const;
    /// Frees items and room, keeps a small array of values for the next use.
    void recycle();
    /// Whether recycling has nothing to free.
    [[nodiscard]] bool isPlain() const;

    [[nodiscard]] CAudioParam* param() const { return m_param; }
    [[nodiscard]] const CAudioParamUpdate& update() const { return m_update; }

private:
    friend class CAudioParamStorage;
    friend class CAudioParamUpdateList;
    friend class CAudioParamUpdatePool;
    friend class CAudioParamUpdateQueue;

    using CCells = CArray<double, 2>;

    void copyCells(CCells& to, const CAudioParamUpdate& update);
    void pointToOwn();

    CAudioParam* m_param = nullptr;
    CAudioParamUpdate m_update;
    CCells m_values;
    CAudioParamData m_data;
    CCells m_defaults; ///< default elements of a template record, with items of their own; afterwards the replaced ones
    CCells m_room;     ///< room for the group; afterwards the array that it replaced
    CArray<CCells, 1> m_groupRoom;
    CAudioParamData m_replaced; ///< items that were replaced

    CAudioParamQueueAnchor* m_anchor = nullptr;
    CAudioParamUpdateRecord* m_previousOfParam = nullptr;
    CAudioParamUpdateRecord* m_next = nullptr;
    CAudioParamUpdateRecord* m_previous = nullptr;
};

} // namespace qrb
