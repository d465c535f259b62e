// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CQrbMemAllocator.h"

#include <cstddef>

namespace qrb {

/// Root base of all library classes: a virtual destructor, and memory from the library's allocator.
class CCheckedObject {
public:
    CCheckedObject() = default;
    CCheckedObject(const CCheckedObject&) = default;
    CCheckedObject(CCheckedObject&&) = default;
    CCheckedObject& operator=(const CCheckedObject&) = default;
    CCheckedObject& operator=(CCheckedObject&&) = default;
    virtual ~CCheckedObject() = default;

    static void* operator new(std::size_t size) { return CQrbMemAllocator::allocate(size); }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* block) noexcept { CQrbMemAllocator::release(block); }
    static void operator delete(void*, void*) noexcept {}
};

} // namespace qrb
