// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Viz/CAudioVizPool.h"

#include "Audio/Viz/CAudioVizDataSpectrum.h"

#include <utility>

namespace qrb {

using platform::CRecursiveLock;
using platform::CScopedLock;

namespace {

/// Holds a lock for a scope if that needs no waiting.
class CTriedLock {
public:
    explicit CTriedLock(CRecursiveLock& lock) : m_lock(lock.tryEnter() ? &lock : nullptr) {}
    CTriedLock(const CTriedLock&) = delete;
    CTriedLock& operator=(const CTriedLock&) = delete;
    ~CTriedLock()
    {
        if (m_lock != nullptr)
            m_lock->leave();
    }
    [[nodiscard]] explicit operator bool() const { return m_lock != nullptr; }

private:
    CRecursiveLock* m_lock;
};

} // namespace

bool CAudioVizPool::fits(const CAudioVizData& record) const
{
    return record.type() != EAudioVizType::spectrum ||
           static_cast<const CAudioVizDataSpectrum&>(record).bins.capacity() ==
               m_binCount.load(std::memory_order_acquire);
}

std::unique_ptr<CAudioVizData> CAudioVizPool::take()
{
    const CTriedLock lock(m_lock);
    if (!lock) {
        std::unique_ptr<CAudioVizData> record = m_waiting.popFront();
        if (record == nullptr || fits(*record))
            return record;
        m_waiting.pushBack(std::move(record));
        return nullptr;
    }
    m_fresh.append(m_waiting);
    while (m_fresh.size() >= m_limit)
        m_free.pushBack(m_fresh.popFront());
    for (std::unique_ptr<CAudioVizData> record; (record = takeHeld()) != nullptr;) {
        if (fits(*record))
            return record;
        m_unfit.pushBack(std::move(record));
    }
    return nullptr;
}

std::unique_ptr<CAudioVizData> CAudioVizPool::takeHeld()
{
    // Without a free one the oldest that waits is lost for the newest.
    return m_free.empty() ? m_fresh.popFront() : m_free.popFront();
}

void CAudioVizPool::post(std::unique_ptr<CAudioVizData> record)
{
    if (record == nullptr)
        return;
    m_waiting.pushBack(std::move(record));
    const CTriedLock lock(m_lock);
    if (lock)
        m_fresh.append(m_waiting);
}

void CAudioVizPool::destroyAll()
{
    CAudioVizList gone;
    {
        const CScopedLock lock(m_lock);
        gone.append(m_fresh);
        gone.append(m_free);
        gone.append(m_unfit);
    }
    m_existing -= gone.size();
}

CAudioVizList CAudioVizPool::takeFresh()
{
    CAudioVizList taken;
    const CScopedLock lock(m_lock);
    taken.append(m_fresh);
    return taken;
}

void CAudioVizPool::giveBack(CAudioVizList&& records)
{
    CAudioVizList ready = std::move(records);
    const std::size_t binCount = m_binCount.load(std::memory_order_acquire);
    // As many again as wait, for what is out being read.
    const std::size_t count = isUsed() ? 2 * m_limit : 0;
    if (m_existing != count || binCount != m_readyBinCount)
        exchangeRecords(ready, count);
    m_readyBinCount = binCount;
    const CScopedLock lock(m_lock);
    m_free.append(ready);
}

void CAudioVizPool::exchangeRecords(CAudioVizList& ready, std::size_t count)
{
    CAudioVizList unfit;
    {
        const CScopedLock lock(m_lock);
        unfit.append(m_unfit);
        ready.append(m_free);
    }
    m_existing -= unfit.size();
    destroyUnfit(ready);
    for (; m_existing < count; ++m_existing)
        ready.pushBack(makeRecord());
    for (; m_existing > count && !ready.empty(); --m_existing)
        (void)ready.popFront();
}

void CAudioVizPool::destroyUnfit(CAudioVizList& records)
{
    for (std::size_t left = records.size(); left > 0; --left) {
        std::unique_ptr<CAudioVizData> record = records.popFront();
        if (fits(*record))
            records.pushBack(std::move(record));
        else
            --m_existing;
    }
}

std::unique_ptr<CAudioVizData> CAudioVizPool::makeRecord() const
{
    std::unique_ptr<CAudioVizData> record = CAudioVizData::create(static_cast<std::int32_t>(m_type));
    if (record->type() == EAudioVizType::spectrum)
        static_cast<CAudioVizDataSpectrum&>(*record).bins.reserve(m_binCount.load(std::memory_order_acquire));
    return record;
}

void CAudioVizPool::flush()
{
    const CScopedLock lock(m_lock);
    m_free.append(m_fresh);
}

} // namespace qrb
