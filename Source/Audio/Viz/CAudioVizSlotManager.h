// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CObject.h"
#include "Platform/CRecursiveLock.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace qrb {

class CAudioVizCollector;
class CAudioVizData;
class CAudioVizExport;
class COutputStream;

/// Slots through which instances of one process show each other's data (tag audio:viz-slot-manager). One stands in the
/// shared tree as "audio.viz-slot-manager", in products that have exports. Its lock comes before those of the
/// collectors, and it is the only one under which they touch each other.
/// Thread: any but the audio thread.
class CAudioVizSlotManager : public CObject {
public:
    static constexpr std::size_t kSlotCount = 48;

    [[nodiscard]] platform::CRecursiveLock& lock() { return m_lock; }

    /// `exports`: null for an instance that only listens. Older members come first where two want one slot.
    void join(CAudioVizCollector& member, const CAudioVizExport* exports);
    void leave(CAudioVizCollector& member);
    /// Something of what a member exports is different. Waits for nobody. Thread: any.
    void markChanged() { m_isChanged.store(true, std::memory_order_release); }
    /// Hands slots and names out anew if something changed, and tells all members about new names.
    void refresh();

    /// A member listens to a source as it comes through a slot; counted.
    void addListener(CAudioVizCollector& member, std::int32_t slot, const CString& name);
    void removeListener(CAudioVizCollector& member, std::int32_t slot, const CString& name);
    /// Fetches what all members that somebody listens to have posted.
    void gather();
    /// Gives a record that a member has fetched to all who listen to its slot.
    void deliver(CAudioVizCollector& owner, const CString& name, CAudioVizData& record);
    /// Writes the slots in use: their count, then number and name of each.
    CErrorPtr writeNames(COutputStream& out);

private:
    struct CMember {
        CAudioVizCollector* collector;
        const CAudioVizExport* exports;
    };
    struct CSlot {
        CAudioVizCollector* owner = nullptr;
        std::int32_t group = 0;
        CString name;

        friend bool operator==(const CSlot&, const CSlot&) = default;
    };
    struct CSubscription {
        CAudioVizCollector* member;
        std::int32_t slot;
        CString name;
        CAudioVizCollector* source = nullptr; ///< whose source is kept active for it
    };

    [[nodiscard]] CAudioVizCollector* ownerOf(std::int32_t slot) const;
    void updateSource(CSubscription& subscription);

    platform::CRecursiveLock m_lock{4000};
    std::atomic<bool> m_isChanged{false};
    CArray<CMember> m_members; ///< the oldest first
    std::array<CSlot, kSlotCount> m_slots;
    CArray<CSubscription> m_subscriptions;
};

} // namespace qrb
