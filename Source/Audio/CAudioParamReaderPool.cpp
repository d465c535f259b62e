// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamReaderPool.h"

#include "Core/CQrbMemAllocator.h"

#include <new>

namespace qrb {

CAudioParamReaderPool::CAudioParamReaderPool()
{
    grow();
}

CAudioParamReaderPool::~CAudioParamReaderPool()
{
    for (CAudioParamReader* const block : m_blocks)
        CQrbMemAllocator::release(block);
}

CAudioParamReader* CAudioParamReaderPool::take()
{
    const platform::CScopedLock guard(m_lock);
    if (m_free == nullptr)
        grow();
    CAudioParamReader* const reader = m_free;
    m_free = reader->m_next;
    *reader = {};
    return reader;
}

void CAudioParamReaderPool::give(CAudioParamReader* reader)
{
    const platform::CScopedLock guard(m_lock);
    reader->m_next = m_free;
    m_free = reader;
}

void CAudioParamReaderPool::grow()
{
    void* const room = CQrbMemAllocator::allocate(m_nextBlock * sizeof(CAudioParamReader));
    CAudioParamReader* const block = static_cast<CAudioParamReader*>(room);
    for (std::size_t i = m_nextBlock; i-- > 0;) {
        ::new (static_cast<void*>(block + i)) CAudioParamReader;
        block[i].m_next = m_free;
        m_free = block + i;
    }
    m_blocks.append(block);
    m_nextBlock *= 2;
}

} // namespace qrb
