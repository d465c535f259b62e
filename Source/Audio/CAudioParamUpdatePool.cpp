// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamUpdatePool.h"

namespace qrb {

CAudioParamUpdatePool::CAudioParamUpdatePool()
{
    for (std::size_t i = 0; i < kReady; ++i)
        give(new CAudioParamUpdateRecord);
}

CAudioParamUpdatePool::~CAudioParamUpdatePool()
{
    collect(m_returned);
    collect(m_returnedPlain);
    while (m_free != nullptr) {
        CAudioParamUpdateRecord* const record = m_free;
        m_free = record->m_next;
        delete record;
    }
}

CAudioParamUpdateRecord* CAudioParamUpdatePool::take(bool isAudio)
{
    if (!isAudio)
        collect(m_returned);
    if (m_free == nullptr)
        collect(m_returnedPlain);
    CAudioParamUpdateRecord* const record = m_free;
    if (record == nullptr)
        return new CAudioParamUpdateRecord;
    m_free = record->m_next;
    record->m_next = nullptr;
    --m_freeCount;
    return record;
}

void CAudioParamUpdatePool::give(CAudioParamUpdateRecord* record)
{
    record->recycle();
    if (m_freeCount >= kKept) {
        delete record;
        return;
    }
    record->m_next = m_free;
    m_free = record;
    ++m_freeCount;
}

void CAudioParamUpdatePool::giveFromAudio(CAudioParamUpdateRecord* record)
{
    std::atomic<CAudioParamUpdateRecord*>& returned = record->isPlain() ? m_returnedPlain : m_returned;
    record->m_next = returned.load(std::memory_order_relaxed);
    while (
        !returned.compare_exchange_weak(record->m_next, record, std::memory_order_release, std::memory_order_relaxed)) {
    }
}

void CAudioParamUpdatePool::collect(std::atomic<CAudioParamUpdateRecord*>& returned)
{
    // All at once, so that a record cannot come back under the hands of a pop.
    CAudioParamUpdateRecord* record = returned.exchange(nullptr, std::memory_order_acquire);
    while (record != nullptr) {
        CAudioParamUpdateRecord* const next = record->m_next;
        give(record);
        record = next;
    }
}

} // namespace qrb
