// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamReaderPool.h"

#include "Core/CQrbStdAllocator.h"

#include <utility>
#include <vector>

namespace qrb {

struct CAudioParamReaderPool::CBlock : CCheckedObject {
    explicit CBlock(std::size_t count) : readers(count) {}

    std::vector<CAudioParamReader, CQrbStdAllocator<CAudioParamReader>> readers;
    std::unique_ptr<CBlock> older;
};

CAudioParamReaderPool::CAudioParamReaderPool()
{
    prepare();
    grow();
    prepare();
}

CAudioParamReaderPool::~CAudioParamReaderPool()
{
    const std::unique_ptr<CBlock> spare(m_spare.load(std::memory_order_acquire));
}

CAudioParamReader* CAudioParamReaderPool::take()
{
    if (m_free == nullptr)
        grow();
    CAudioParamReader* const reader = m_free;
    m_free = reader->m_next;
    *reader = {};
    return reader;
}

void CAudioParamReaderPool::give(CAudioParamReader* reader)
{
    reader->m_next = m_free;
    m_free = reader;
}

void CAudioParamReaderPool::prepare()
{
    if (isSpareUsed())
        m_spare.store(makeBlock().release(), std::memory_order_release);
}

std::unique_ptr<CAudioParamReaderPool::CBlock> CAudioParamReaderPool::makeBlock()
{
    // Both sides may make a block at the same time, of one size then.
    const std::size_t count = m_nextCount.load(std::memory_order_relaxed);
    m_nextCount.store(count * 2, std::memory_order_relaxed);
    auto block = std::make_unique<CBlock>(count);
    for (std::size_t i = 1; i < count; ++i)
        block->readers[i - 1].m_next = &block->readers[i];
    return block;
}

void CAudioParamReaderPool::grow()
{
    std::unique_ptr<CBlock> block(m_spare.exchange(nullptr, std::memory_order_acquire));
    if (block == nullptr)
        block = makeBlock(); // the owner did not come to it
    m_free = &block->readers.front();
    block->older = std::exchange(m_blocks, nullptr);
    m_blocks = std::move(block);
}

} // namespace qrb
