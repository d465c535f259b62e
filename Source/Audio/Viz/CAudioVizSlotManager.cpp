// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Viz/CAudioVizSlotManager.h"

#include "Audio/Viz/CAudioVizCollector.h"
#include "Audio/Viz/CAudioVizData.h"
#include "Audio/Viz/CAudioVizExport.h"
#include "Core/COutputStream.h"

#include <algorithm>
#include <utility>

namespace qrb {

using platform::CScopedLock;

void CAudioVizSlotManager::join(CAudioVizCollector& member, const CAudioVizExport* exports)
{
    const CScopedLock guard(m_lock);
    m_members.append({&member, exports});
    markChanged();
}

void CAudioVizSlotManager::leave(CAudioVizCollector& member)
{
    const CScopedLock guard(m_lock);
    for (std::size_t i = m_members.size(); i > 0; --i)
        if (m_members[i - 1].collector == &member)
            m_members.removeAt(i - 1);
    for (std::size_t i = m_subscriptions.size(); i > 0; --i) {
        if (m_subscriptions[i - 1].member != &member)
            continue;
        m_subscriptions[i - 1].slot = -1; // owned by nobody
        updateSource(m_subscriptions[i - 1]);
        m_subscriptions.removeAt(i - 1);
    }
    markChanged();
    refresh(); // nothing may lead to who is gone
}

CAudioVizCollector* CAudioVizSlotManager::ownerOf(std::int32_t slot) const
{
    const auto place = static_cast<std::size_t>(slot);
    return slot >= 0 && place < kSlotCount ? m_slots[place].owner : nullptr;
}

void CAudioVizSlotManager::refresh()
{
    const CScopedLock guard(m_lock);
    if (!m_isChanged.exchange(false, std::memory_order_acq_rel))
        return;
    std::array<CSlot, kSlotCount> slots;
    for (const CMember& member : m_members) {
        if (member.exports == nullptr)
            continue;
        for (std::int32_t group = 0; group < CAudioVizExport::kGroupCount; ++group) {
            const std::int32_t slot = member.exports->slotOf(group);
            if (slot < 0 || static_cast<std::size_t>(slot) >= kSlotCount)
                continue;
            CSlot& place = slots[static_cast<std::size_t>(slot)];
            if (place.owner == nullptr)
                place = {member.collector, group, member.exports->nameOf(group)};
        }
    }
    if (slots == m_slots)
        return;
    m_slots = std::move(slots);
    for (CSubscription& subscription : m_subscriptions)
        updateSource(subscription);
    for (const CMember& member : m_members)
        member.collector->tellSlotNames();
}

void CAudioVizSlotManager::updateSource(CSubscription& subscription)
{
    CAudioVizCollector* const owner = ownerOf(subscription.slot);
    if (owner == subscription.source)
        return;
    CAudioVizCollector* const before = std::exchange(subscription.source, owner);
    const auto isMember = [this](const CAudioVizCollector* collector) {
        return std::ranges::any_of(m_members,
                                   [collector](const CMember& member) { return member.collector == collector; });
    };
    if (before != nullptr && isMember(before))
        before->removeRef(before->source(subscription.name));
    if (owner != nullptr)
        owner->addRef(owner->source(subscription.name));
}

void CAudioVizSlotManager::addListener(CAudioVizCollector& member, std::int32_t slot, const CString& name)
{
    const CScopedLock guard(m_lock);
    refresh();
    updateSource(m_subscriptions.append({&member, slot, name, nullptr}));
}

void CAudioVizSlotManager::removeListener(CAudioVizCollector& member, std::int32_t slot, const CString& name)
{
    const CScopedLock guard(m_lock);
    const auto found = std::ranges::find_if(m_subscriptions, [&](const CSubscription& subscription) {
        return subscription.member == &member && subscription.slot == slot && subscription.name == name;
    });
    if (found == m_subscriptions.end())
        return;
    found->slot = -1; // owned by nobody
    updateSource(*found);
    m_subscriptions.removeAt(static_cast<std::size_t>(found - m_subscriptions.begin()));
}

void CAudioVizSlotManager::gather()
{
    const CScopedLock guard(m_lock);
    refresh();
    for (const CMember& member : m_members) {
        const bool isHeard = std::ranges::any_of(m_subscriptions, [&](const CSubscription& subscription) {
            return subscription.source == member.collector;
        });
        if (isHeard)
            member.collector->gather();
    }
}

void CAudioVizSlotManager::deliver(CAudioVizCollector& owner, const CString& name, CAudioVizData& record)
{
    const CScopedLock guard(m_lock);
    for (std::size_t slot = 0; slot < kSlotCount; ++slot) {
        if (m_slots[slot].owner != &owner || m_slots[slot].group != record.group)
            continue;
        CAudioVizBlob blob;
        const auto number = static_cast<std::int32_t>(slot);
        CArray<CAudioVizCollector*, 8> told; // a member gives it to all its clients
        for (const CSubscription& subscription : m_subscriptions) {
            if (subscription.slot != number || subscription.name != name || told.contains(subscription.member))
                continue;
            if (blob == nullptr) {
                // The clock of another instance tells nothing here, so these records are always due.
                const double time = std::exchange(record.time, 0.0);
                record.serial = number;
                blob = encodeVizData(record);
                record.serial = CAudioVizData::kNoSlot;
                record.time = time;
            }
            told.append(subscription.member);
            subscription.member->receive(number, name, blob);
        }
    }
}

CErrorPtr CAudioVizSlotManager::writeNames(COutputStream& out)
{
    const CScopedLock guard(m_lock);
    refresh();
    const auto isUsed = [](const CSlot& slot) { return slot.owner != nullptr; };
    QRB_TRY(out.writeInt32(static_cast<std::int32_t>(std::ranges::count_if(m_slots, isUsed))));
    for (std::size_t slot = 0; slot < kSlotCount; ++slot) {
        if (!isUsed(m_slots[slot]))
            continue;
        QRB_TRY(out.writeInt32(static_cast<std::int32_t>(slot)));
        QRB_TRY(out.writeString(m_slots[slot].name));
    }
    return {};
}

} // namespace qrb
