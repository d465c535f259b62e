// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CSampleBufferPool.h"

#include "Audio/Processes/RateMath.h"
#include "Core/CQrbMemAllocator.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <new>
#include <utility>

namespace qrb {

namespace {

constexpr std::size_t kAlignment = 16;

std::size_t bytesOf(int sampleCount)
{
    return static_cast<std::size_t>(std::max(sampleCount, 1)) * sizeof(double);
}

int binOf(std::size_t bytes)
{
    const std::size_t bin = (bytes - 1) / CSampleBufferPool::kBinBytes;
    return static_cast<int>(std::min(bin, static_cast<std::size_t>(CSampleBufferPool::kBinCount)));
}

} // namespace

void CSampleBuffer::giveBack() noexcept
{
    m_header->pool->release(m_header);
}

CSampleBufferPool::~CSampleBufferPool()
{
    for (CSampleBufferHeader* header : m_free) {
        while (header != nullptr) {
            CSampleBufferHeader* next = header->nextFree;
            CQrbMemAllocator::release(header->rawBlock);
            header = next;
        }
    }
}

CSampleBufferHeader* CSampleBufferPool::allocate(std::size_t bytes, int bin)
{
    const std::size_t capacity = bin < kBinCount ? static_cast<std::size_t>(bin + 1) * kBinBytes
                                                 : (bytes + kAlignment - 1) / kAlignment * kAlignment;
    void* raw = CQrbMemAllocator::allocate(sizeof(CSampleBufferHeader) + capacity + kAlignment - 1);
    const auto address = reinterpret_cast<std::uintptr_t>(raw);
    const std::size_t shift = (kAlignment - address % kAlignment) % kAlignment;
    auto* header = ::new (static_cast<void*>(static_cast<std::byte*>(raw) + shift)) CSampleBufferHeader{};
    header->rawBlock = raw;
    header->pool = this;
    header->capacity = capacity;
    header->bin = bin;
    return header;
}

CSampleBufferHeader* CSampleBufferPool::takeFree(int bin) noexcept
{
    if (bin < kBinCount) {
        const std::uint64_t fitting = m_filled >> bin;
        if (fitting == 0)
            return nullptr;
        bin += std::countr_zero(fitting);
    }
    CSampleBufferHeader*& list = m_free[static_cast<std::size_t>(bin)];
    CSampleBufferHeader* header = list;
    if (header == nullptr)
        return nullptr;
    list = header->nextFree;
    if (list == nullptr && bin < kBinCount)
        m_filled &= ~(std::uint64_t{1} << bin);
    return header;
}

void CSampleBufferPool::keepFree(CSampleBufferHeader& header) noexcept
{
    header.nextFree = std::exchange(m_free[static_cast<std::size_t>(header.bin)], &header);
    if (header.bin < kBinCount)
        m_filled |= std::uint64_t{1} << header.bin;
}

CSampleBuffer CSampleBufferPool::get(int sampleCount)
{
    const std::size_t bytes = bytesOf(sampleCount);
    const int bin = binOf(bytes);
    CSampleBufferHeader* header = takeFree(bin);
    if (header != nullptr && header->capacity < bytes) { // only the list of large ones mixes sizes
        CQrbMemAllocator::release(header->rawBlock);
        header = nullptr;
    }
    if (header == nullptr) {
        header = allocate(bytes, bin);
    }
    header->nextFree = nullptr;
    header->references = 1;
    ++m_usedCount;
    return CSampleBuffer(header);
}

CSampleBuffer CSampleBufferPool::getSilence(int sampleCount)
{
    CSampleBuffer buffer = get(sampleCount);
    std::fill_n(buffer.data(), std::max(sampleCount, 1), 0.0);
    return buffer;
}

CSampleBuffer CSampleBufferPool::getWhole(const CSampleBuffer& buffer, int sampleCount)
{
    if (buffer.form() == ESampleForm::whole) {
        return buffer;
    }
    CSampleBuffer whole = get(sampleCount);
    const auto half = static_cast<std::size_t>(sampleCount / 2);
    const double* in = buffer.data();
    double* out = whole.data();
    if (buffer.form() == ESampleForm::stuffed) {
        stuffZeros({in, half}, {out, 2 * half});
        return whole;
    }
    for (std::size_t i = 0; i < half; ++i) {
        out[2 * i] = in[i];
        out[2 * i + 1] = 0.0;
    }
    return whole;
}

void CSampleBufferPool::prefill(int sampleCount, int count)
{
    const std::size_t bytes = bytesOf(sampleCount);
    const int bin = binOf(bytes);
    for (int i = 0; i < count; ++i)
        keepFree(*allocate(bytes, bin));
}

void CSampleBufferPool::release(CSampleBufferHeader* header) noexcept
{
    keepFree(*header);
    --m_usedCount;
}

} // namespace qrb
