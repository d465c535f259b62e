// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Product/SystemAllocations.h"

#include <cstddef>

#if QRB_SYSTEM_ALLOCATOR

bool countsSystemAllocations()
{
    return false;
}

std::uint64_t systemAllocations()
{
    return 0;
}

#else

namespace {

constinit thread_local std::uint64_t t_count = 0;

} // namespace

// Names of the C library that stay callable when a program brings a malloc of its own.
extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);

void* malloc(std::size_t size)
{
    ++t_count;
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size)
{
    ++t_count;
    return __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size)
{
    ++t_count;
    return __libc_realloc(block, size);
}

void* memalign(std::size_t alignment, std::size_t size)
{
    ++t_count;
    return __libc_memalign(alignment, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    ++t_count;
    return __libc_memalign(alignment, size);
}

} // extern "C"

bool countsSystemAllocations()
{
    return true;
}

std::uint64_t systemAllocations()
{
    return t_count;
}

#endif
