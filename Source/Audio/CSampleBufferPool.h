// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CSampleBuffer.h"
#include "Core/CCheckedObject.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace qrb {

/// Sample buffers of one plug-in instance, kept in lists by size so that a running graph allocates nothing.
///
/// Bins are 512 bytes wide; what is larger than the 64 bins shares one list. Where a bin has run out, a free buffer of a
/// wider one serves, so that a host which cuts its blocks anyhow does not fill every bin. Outlives all its buffers.
/// Thread: audio.
class CSampleBufferPool : public CCheckedObject {
public:
    static constexpr std::size_t kBinBytes = 512;
    static constexpr int kBinCount = 64;

    CSampleBufferPool() = default;
    CSampleBufferPool(const CSampleBufferPool&) = delete;
    CSampleBufferPool& operator=(const CSampleBufferPool&) = delete;
    ~CSampleBufferPool() override;

    /// A buffer with room for `sampleCount` doubles; what it holds is undefined.
    [[nodiscard]] CSampleBuffer get(int sampleCount);
    /// The same, filled with zeros.
    [[nodiscard]] CSampleBuffer getSilence(int sampleCount);
    /// The same samples in the whole form, `sampleCount` of them; unheard ones are zeros.
    [[nodiscard]] CSampleBuffer getWhole(const CSampleBuffer& buffer, int sampleCount);
    /// Makes `count` buffers of `sampleCount` doubles ready.
    void prefill(int sampleCount, int count);

    /// Buffers that are in use now.
    [[nodiscard]] int usedCount() const noexcept { return m_usedCount; }

private:
    friend class CSampleBuffer;
    void release(CSampleBufferHeader* header) noexcept;
    [[nodiscard]] CSampleBufferHeader* allocate(std::size_t bytes, int bin);
    /// A free buffer of that bin, or of the next wider one that has any; null when there is none.
    [[nodiscard]] CSampleBufferHeader* takeFree(int bin) noexcept;
    void keepFree(CSampleBufferHeader& header) noexcept;

    std::array<CSampleBufferHeader*, kBinCount + 1> m_free{};
    std::uint64_t m_filled = 0; ///< a bit for each bin that has free buffers
    int m_usedCount = 0;
};

} // namespace qrb
