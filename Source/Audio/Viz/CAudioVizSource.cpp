// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Viz/CAudioVizSource.h"

#include "Audio/Viz/CAudioVizDataSpectrum.h"

#include <algorithm>
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

std::size_t CAudioVizSource::limit() const
{
    if (m_type.load(std::memory_order_acquire) != static_cast<std::int32_t>(EAudioVizType::spectrum))
        return kMaxRecords;
    return kMaxSpectra * static_cast<std::size_t>(std::max(1, m_lineCount.load(std::memory_order_acquire)));
}

bool CAudioVizSource::addLine(EAudioVizType type)
{
    std::int32_t present = kNoType;
    const auto wanted = static_cast<std::int32_t>(type);
    if (!m_type.compare_exchange_strong(present, wanted, std::memory_order_acq_rel) && present != wanted)
        return false;
    m_lineCount.fetch_add(1, std::memory_order_acq_rel);
    return true;
}

bool CAudioVizSource::fits(const CAudioVizData& record) const
{
    return record.type() != EAudioVizType::spectrum ||
           static_cast<const CAudioVizDataSpectrum&>(record).bins.capacity() ==
               m_binCount.load(std::memory_order_acquire);
}

std::unique_ptr<CAudioVizData> CAudioVizSource::take()
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
    if (m_fresh.size() >= limit())
        dropOldest();
    for (std::unique_ptr<CAudioVizData> record; (record = takeHeld()) != nullptr;) {
        if (fits(*record))
            return record;
        m_unfit.pushBack(std::move(record));
    }
    return nullptr;
}

std::unique_ptr<CAudioVizData> CAudioVizSource::takeHeld()
{
    // Without a free one the oldest that waits is lost for the newest.
    return m_free.empty() ? m_fresh.popFront() : m_free.popFront();
}

void CAudioVizSource::dropOldest()
{
    while (m_fresh.size() >= limit())
        m_free.pushBack(m_fresh.popFront());
}

void CAudioVizSource::post(std::unique_ptr<CAudioVizData> record)
{
    if (record == nullptr)
        return;
    m_waiting.pushBack(std::move(record));
    const CTriedLock lock(m_lock);
    if (lock)
        m_fresh.append(m_waiting);
}

void CAudioVizSource::removeListener()
{
    if (m_listenerCount.fetch_sub(1, std::memory_order_acq_rel) == 1)
        destroyAll();
}

void CAudioVizSource::destroyAll()
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

CAudioVizList CAudioVizSource::takeFresh()
{
    CAudioVizList taken;
    const CScopedLock lock(m_lock);
    taken.append(m_fresh);
    return taken;
}

void CAudioVizSource::giveBack(CAudioVizList&& records)
{
    CAudioVizList ready = std::move(records);
    const std::size_t binCount = m_binCount.load(std::memory_order_acquire);
    const std::size_t count = isActive() && m_lineCount.load(std::memory_order_acquire) > 0 ? 2 * limit() : 0;
    if (m_existing != count || binCount != m_readyBinCount)
        exchangeRecords(ready, count);
    m_readyBinCount = binCount;
    const CScopedLock lock(m_lock);
    m_free.append(ready);
}

void CAudioVizSource::exchangeRecords(CAudioVizList& ready, std::size_t count)
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

void CAudioVizSource::destroyUnfit(CAudioVizList& records)
{
    for (std::size_t left = records.size(); left > 0; --left) {
        std::unique_ptr<CAudioVizData> record = records.popFront();
        if (fits(*record))
            records.pushBack(std::move(record));
        else
            --m_existing;
    }
}

std::unique_ptr<CAudioVizData> CAudioVizSource::makeRecord() const
{
    std::unique_ptr<CAudioVizData> record = CAudioVizData::create(m_type.load(std::memory_order_acquire));
    if (record->type() == EAudioVizType::spectrum)
        static_cast<CAudioVizDataSpectrum&>(*record).bins.reserve(m_binCount.load(std::memory_order_acquire));
    return record;
}

void CAudioVizSource::flush()
{
    const CScopedLock lock(m_lock);
    m_free.append(m_fresh);
}

} // namespace qrb
