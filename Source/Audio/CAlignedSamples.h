// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CQrbMemAllocator.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace qrb {

/// Doubles of the library's allocator that begin on a cache line, for what vectors work on.
class CAlignedSamples {
public:
    static constexpr std::size_t kAlignment = 64;

    CAlignedSamples() noexcept = default;
    /// `count` zeros.
    explicit CAlignedSamples(std::size_t count)
        : m_block(CQrbMemAllocator::allocate(count * sizeof(double) + kAlignment)), m_count(count)
    {
        const auto address = reinterpret_cast<std::uintptr_t>(m_block);
        const std::size_t skip = (kAlignment - address % kAlignment) % kAlignment;
        m_data = reinterpret_cast<double*>(static_cast<std::byte*>(m_block) + skip);
        fill(0.0);
    }
    CAlignedSamples(CAlignedSamples&& other) noexcept { swap(other); }
    CAlignedSamples& operator=(CAlignedSamples&& other) noexcept
    {
        CAlignedSamples taken(std::move(other));
        swap(taken);
        return *this;
    }
    CAlignedSamples(const CAlignedSamples&) = delete;
    CAlignedSamples& operator=(const CAlignedSamples&) = delete;
    ~CAlignedSamples() { CQrbMemAllocator::release(m_block); }

    [[nodiscard]] double* data() noexcept { return m_data; }
    [[nodiscard]] const double* data() const noexcept { return m_data; }
    [[nodiscard]] std::size_t size() const noexcept { return m_count; }
    [[nodiscard]] std::span<double> span() noexcept { return {m_data, m_count}; }
    [[nodiscard]] std::span<const double> span() const noexcept { return {m_data, m_count}; }
    void fill(double value) noexcept { std::fill_n(m_data, m_count, value); }

private:
    void swap(CAlignedSamples& other) noexcept
    {
        std::swap(m_block, other.m_block);
        std::swap(m_data, other.m_data);
        std::swap(m_count, other.m_count);
    }

    void* m_block = nullptr;
    double* m_data = nullptr;
    std::size_t m_count = 0;
};

} // namespace qrb
