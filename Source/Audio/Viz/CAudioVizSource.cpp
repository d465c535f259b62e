// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Viz/CAudioVizSource.h"

#include <memory>

namespace qrb {

CAudioVizSource::~CAudioVizSource()
{
    for (CPool* pool = m_pools.load(); pool != nullptr;) {
        const std::unique_ptr<CPool> gone(pool);
        pool = gone->older;
    }
}

std::size_t CAudioVizSource::limit() const
{
    std::size_t sum = 0;
    visitPools([&sum](const CAudioVizPool& pool) { sum += pool.isUsed() ? pool.limit() : 0; });
    return sum;
}

CAudioVizPool& CAudioVizSource::joinPool(EAudioVizType type)
{
    const bool isShared = type != EAudioVizType::spectrum;
    CAudioVizPool* found = nullptr;
    visitPools([&](CAudioVizPool& pool) {
        if (pool.type() == type && (isShared || !pool.isUsed()))
            found = &pool;
    });
    if (found == nullptr) {
        auto made = std::make_unique<CPool>(type, isShared ? kMaxRecords : kMaxSpectra);
        made->older = m_pools.load(std::memory_order_relaxed);
        found = made.get();
        m_pools.store(made.release(), std::memory_order_release);
    }
    found->addWriter();
    return *found;
}

void CAudioVizSource::addListener()
{
    if (!isActive()) // what was on its way when the last listener went
        visitPools([](CAudioVizPool& pool) { pool.flush(); });
    m_listenerCount.fetch_add(1, std::memory_order_acq_rel);
}

void CAudioVizSource::removeListener()
{
    if (m_listenerCount.fetch_sub(1, std::memory_order_acq_rel) == 1)
        visitPools([](CAudioVizPool& pool) { pool.destroyAll(); });
}

} // namespace qrb
