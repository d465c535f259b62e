// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamUpdateList.h"

namespace qrb {

CAudioParamUpdateList::~CAudioParamUpdateList()
{
    while (CAudioParamUpdateRecord* const record = takeFirst())
        delete record;
}

void CAudioParamUpdateList::append(CAudioParamUpdateRecord* record)
{
    record->m_previous = m_last;
    record->m_next = nullptr;
    (m_last != nullptr ? m_last->m_next : m_first) = record;
    m_last = record;
    ++m_count;
}

CAudioParamUpdateRecord* CAudioParamUpdateList::takeFirst()
{
    CAudioParamUpdateRecord* const record = m_first;
    if (record != nullptr)
        remove(*record);
    return record;
}

void CAudioParamUpdateList::takeAll(CAudioParamUpdateList& from)
{
    if (from.empty())
        return;
    from.m_first->m_previous = m_last;
    (m_last != nullptr ? m_last->m_next : m_first) = from.m_first;
    m_last = from.m_last;
    m_count += from.m_count;
    from.m_first = nullptr;
    from.m_last = nullptr;
    from.m_count = 0;
}

void CAudioParamUpdateList::remove(CAudioParamUpdateRecord& record)
{
    (record.m_previous != nullptr ? record.m_previous->m_next : m_first) = record.m_next;
    (record.m_next != nullptr ? record.m_next->m_previous : m_last) = record.m_previous;
    record.m_next = nullptr;
    record.m_previous = nullptr;
    --m_count;
}

} // namespace qrb
