// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamReader.h"
#include "Core/CCheckedObject.h"

#include <atomic>
#include <cstddef>
#include <memory>

namespace qrb {

/// Readers of one instance: handed out from a free list, made in blocks that double in size. The list belongs to who
/// runs the graph and has no lock; the next block is made ready by the instance's owner, ahead of need.
class CAudioParamReaderPool : public CCheckedObject {
public:
    static constexpr std::size_t kFirstBlock = 256;

    CAudioParamReaderPool();
    ~CAudioParamReaderPool() override;
    CAudioParamReaderPool(const CAudioParamReaderPool&) = delete;
    CAudioParamReaderPool& operator=(const CAudioParamReaderPool&) = delete;

    /// Thread: audio, or any while no audio runs.
    [[nodiscard]] CAudioParamReader* take();
    /// Thread: as take().
    void give(CAudioParamReader* reader);

    /// Whether prepare() has work. Thread: any.
    [[nodiscard]] bool isSpareUsed() const { return m_spare.load(std::memory_order_relaxed) == nullptr; }
    /// Makes the next block ready. Thread: the owner's.
    void prepare();

private:
    struct CBlock;

    [[nodiscard]] std::unique_ptr<CBlock> makeBlock();
    void grow();

    CAudioParamReader* m_free = nullptr;
    std::unique_ptr<CBlock> m_blocks;      ///< in use, each owning the one before
    std::atomic<CBlock*> m_spare{nullptr}; ///< owned
    std::atomic<std::size_t> m_nextCount{kFirstBlock};
};

} // namespace qrb
