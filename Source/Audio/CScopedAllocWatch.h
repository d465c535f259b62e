// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CQrbMemAllocator.h"

#include <cstdint>

namespace qrb {

/// Counts the calls of the library's allocator that its thread makes during a scope.
class CScopedAllocWatch {
public:
    /// `count` gets the number at the end of the scope.
    explicit CScopedAllocWatch(std::uint64_t& count) : m_count(count), m_before(CQrbMemAllocator::allocateCount()) {}
    ~CScopedAllocWatch() { m_count = CQrbMemAllocator::allocateCount() - m_before; }
    CScopedAllocWatch(const CScopedAllocWatch&) = delete;
    CScopedAllocWatch& operator=(const CScopedAllocWatch&) = delete;

private:
    std::uint64_t& m_count;
    std::uint64_t m_before;
};

} // namespace qrb
