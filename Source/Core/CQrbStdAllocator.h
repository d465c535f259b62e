// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CQrbMemAllocator.h"

#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <utility>

namespace qrb {

/// Lets the standard containers take their memory from the library's allocator.
template <typename T>
struct CQrbStdAllocator {
    using value_type = T;

    CQrbStdAllocator() = default;
    template <typename U>
    CQrbStdAllocator(const CQrbStdAllocator<U>&) noexcept
    {
    }

    [[nodiscard]] T* allocate(std::size_t count)
    {
        static_assert(alignof(T) <= 16, "the allocator aligns to 16 bytes");
        return static_cast<T*>(CQrbMemAllocator::allocate(count * sizeof(T)));
    }
    void deallocate(T* items, std::size_t) noexcept { CQrbMemAllocator::release(items); }

    friend bool operator==(const CQrbStdAllocator&, const CQrbStdAllocator&) { return true; }
};

/// Ordered map with nodes from the library's allocator; looks keys up in any comparable form.
template <typename K, typename V>
using CMap = std::map<K, V, std::less<>, CQrbStdAllocator<std::pair<const K, V>>>;

/// Ordered set, see CMap.
template <typename T>
using CSet = std::set<T, std::less<>, CQrbStdAllocator<T>>;

} // namespace qrb
