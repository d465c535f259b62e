// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamUpdateQueue.h"

namespace qrb {

CAudioParamUpdateRecord* CAudioParamUpdateQueue::newestOf(const CAudioParamUpdateRecord& record) const
{
    return record.m_anchor->epoch == m_epoch ? record.m_anchor->newest : nullptr;
}

void CAudioParamUpdateQueue::append(CAudioParamUpdateRecord* record)
{
    record->m_previousOfParam = newestOf(*record);
    record->m_anchor->newest = record;
    record->m_anchor->epoch = m_epoch;
    m_list.append(record);
}

CAudioParamUpdateRecord* CAudioParamUpdateQueue::appendMerged(CAudioParamUpdateRecord* record)
{
    const CAudioParamUpdate& update = record->m_update;
    CAudioParamUpdateRecord* waiting = update.isTemplate() ? nullptr : newestOf(*record);
    for (; waiting != nullptr && !waiting->m_update.isTemplate(); waiting = waiting->m_previousOfParam) {
        const CAudioParamUpdate& other = waiting->m_update;
        if (other.group != update.group)
            continue;
        if (other.format != update.format)
            break;
        if (waiting->touches(*record)) {
            waiting->merge(*record);
            return record;
        }
        // An end of the group set on either side does not commute with a range apart from it.
        if (other.isToEnd || update.isToEnd)
            break;
    }
    append(record);
    return nullptr;
}

void CAudioParamUpdateQueue::splice(CAudioParamUpdateList& list, CAudioParamUpdateList* dropped)
{
    while (CAudioParamUpdateRecord* const record = list.takeFirst()) {
        if (dropped != nullptr)
            dropCovered(*record, *dropped);
        append(record);
    }
}

void CAudioParamUpdateQueue::dropCovered(CAudioParamUpdateRecord& later, CAudioParamUpdateList& dropped)
{
    CAudioParamUpdateRecord* newer = nullptr;
    for (CAudioParamUpdateRecord* waiting = newestOf(later); waiting != nullptr;) {
        CAudioParamUpdateRecord* const older = waiting->m_previousOfParam;
        if (waiting->isCoveredBy(later)) {
            (newer != nullptr ? newer->m_previousOfParam : later.m_anchor->newest) = older;
            m_list.remove(*waiting);
            later.takeRoom(*waiting);
            dropped.append(waiting);
        } else {
            newer = waiting;
        }
        waiting = older;
    }
}

void CAudioParamUpdateQueue::moveTo(CAudioParamUpdateList& to)
{
    to.takeAll(m_list);
    ++m_epoch;
}

} // namespace qrb
