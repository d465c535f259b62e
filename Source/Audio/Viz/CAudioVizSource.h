// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamPathEntry.h"
#include "Audio/Viz/CAudioVizPool.h"

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace qrb {

/// Where the modules of one name leave records and readers find them. Entered in its collector under its name and as
/// old as that. Small records of all lines share a pool; spectra, which are large and may differ in size, have one for
/// each line.
class CAudioVizSource : public CAudioParamPathEntry {
public:
    /// Records that wait at most, of all lines.
    static constexpr std::size_t kMaxRecords = 64;
    /// Spectra that wait at most, of each line.
    static constexpr std::size_t kMaxSpectra = 2;

    explicit CAudioVizSource(const CString& name) : CAudioParamPathEntry(name) {}
    ~CAudioVizSource() override;

    /// Whether anybody listens. Thread: any.
    [[nodiscard]] bool isActive() const { return m_listenerCount.load(std::memory_order_acquire) > 0; }
    /// Most records that a reader keeps. Thread: any.
    [[nodiscard]] std::size_t limit() const;

    /// The pool for one more line. Thread: audio.
    [[nodiscard]] CAudioVizPool& joinPool(EAudioVizType type);

    /// Calls `visit(pool)` for each pool. Thread: any.
    template <class F>
    void visitPools(const F& visit) const
    {
        for (CPool* pool = m_pools.load(std::memory_order_acquire); pool != nullptr; pool = pool->older)
            visit(static_cast<CAudioVizPool&>(*pool));
    }

    // Thread: any, one at a time: the collector's readers take turns.

    /// Counts listeners; with the last one all records go.
    void addListener();
    void removeListener();

private:
    struct CPool : public CAudioVizPool {
        using CAudioVizPool::CAudioVizPool;
        CPool* older = nullptr;
    };

    std::atomic<std::int32_t> m_listenerCount{0};
    std::atomic<CPool*> m_pools{nullptr}; ///< owned; only the audio thread adds, nobody removes
};

} // namespace qrb
