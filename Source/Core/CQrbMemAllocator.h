// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

namespace qrb {

/// Process-wide allocator of all library objects and strings: pools of small blocks, large blocks from the system.
/// Blocks are aligned to 16 bytes. Thread: any; a block may be released by another thread than the one that took it.
/// The pools come into being with the first allocation and go with destroyAll(). Running out of memory ends the process.
class CQrbMemAllocator {
public:
    /// Number of size classes, 16 bytes apart.
    static constexpr std::size_t kClassCount = 255;
    /// Largest block in bytes that a size class serves; anything above comes from the system.
    static constexpr std::size_t kMaxPooledSize = kClassCount * 16;

    /// A block of at least `size` bytes; 0 yields a block of 16. Never null.
    [[nodiscard]] static void* allocate(std::size_t size);
    /// A block of at least `size` bytes with the content of `block`, which is released; null is like allocate().
    [[nodiscard]] static void* reallocate(void* block, std::size_t size);
    /// Gives a block back; null does nothing.
    static void release(void* block) noexcept;

    /// Number of allocate() calls (reallocate() makes one) of the calling thread so far.
    [[nodiscard]] static std::uint64_t allocateCount() noexcept;
    /// Makes at least `count` blocks for `size` bytes ready, so that taking them asks the system for nothing.
    /// Sizes above kMaxPooledSize are ignored.
    static void prefill(std::size_t size, std::size_t count);
    /// Number of chunks of small blocks taken from the system since the pools came into being.
    [[nodiscard]] static std::size_t chunkCount() noexcept;
    /// Returns the pools to the system, save those of sizes that still have blocks out, which stay usable, and returns the
    /// number of these blocks (0 when the library's memory is all back). No other thread may be inside the allocator.
    /// Large blocks are not touched. Allocation works again afterwards.
    static std::size_t destroyAll() noexcept;
    /// The same, unless another living thread has used the allocator: it may be inside, and the pools stay for whoever
    /// comes next. Thread: any.
    static void destroyAllIfAlone() noexcept;
    /// For code that is about to be unmapped: follows no thread's end any more.
    static void leaveThreads() noexcept;
    /// The same, and gives back what is held for threads and whatever else is not in use. No other thread is inside the
    /// allocator, or will be.
    static void leaveProcess() noexcept;
};

} // namespace qrb
