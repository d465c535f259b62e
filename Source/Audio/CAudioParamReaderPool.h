// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamReader.h"
#include "Core/CArray.h"
#include "Core/CCheckedObject.h"
#include "Platform/CRecursiveLock.h"

#include <cstddef>

namespace qrb {

/// Readers of one instance: handed out from a free list, made in blocks that double in size. Thread: any.
class CAudioParamReaderPool : public CCheckedObject {
public:
    static constexpr std::size_t kFirstBlock = 256;

    CAudioParamReaderPool();
    ~CAudioParamReaderPool() override;
    CAudioParamReaderPool(const CAudioParamReaderPool&) = delete;
    CAudioParamReaderPool& operator=(const CAudioParamReaderPool&) = delete;

    [[nodiscard]] CAudioParamReader* take();
    void give(CAudioParamReader* reader);

private:
    void grow();

    platform::CRecursiveLock m_lock{50};
    CAudioParamReader* m_free = nullptr;
    CArray<CAudioParamReader*> m_blocks; // owned memory of CQrbMemAllocator
    std::size_t m_nextBlock = kFirstBlock;
};

} // namespace qrb
