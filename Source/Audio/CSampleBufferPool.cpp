// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CSampleBufferPool.h"

#include "Audio/Processes/RateMath.h"
#include "Core/CQrbMemAllocator.h"

#include <algorithm>
#include <cstdint>
#include <new>

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

CSampleBuffer CSampleBufferPool::get(int sampleCount)
{
    const std::size_t bytes = bytesOf(sampleCount);
    const int bin = binOf(bytes);
    CSampleBufferHeader*& list = m_free[static_cast<std::size_t>(bin)];
    CSampleBufferHeader* header = list;
    if (header != nullptr) {
        list = header->nextFree;
        if (header->capacity < bytes) { // only the list of large ones mixes sizes
            CQrbMemAllocator::release(header->rawBlock);
            header = nullptr;
        }
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
    CSampleBufferHeader*& list = m_free[static_cast<std::size_t>(bin)];
    for (int i = 0; i < count; ++i) {
        CSampleBufferHeader* header = allocate(bytes, bin);
        header->nextFree = list;
        list = header;
    }
}

void CSampleBufferPool::release(CSampleBufferHeader* header) noexcept
{
    CSampleBufferHeader*& list = m_free[static_cast<std::size_t>(header->bin)];
    header->nextFree = list;
    list = header;
    --m_usedCount;
}

} // namespace qrb
