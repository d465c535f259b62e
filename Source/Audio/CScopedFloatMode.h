// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <xmmintrin.h>

namespace qrb {

/// Pins the arithmetic of the calling thread for a scope: rounds to nearest, takes denormal numbers for zero, raises
/// nothing. A host's thread may come with any mode, and our output must be the same bit for bit; the host gets its mode
/// back.
class CScopedFloatMode {
public:
    CScopedFloatMode() : m_before(_mm_getcsr()) { _mm_setcsr(kMode); }
    ~CScopedFloatMode() { _mm_setcsr(m_before); }
    CScopedFloatMode(const CScopedFloatMode&) = delete;
    CScopedFloatMode& operator=(const CScopedFloatMode&) = delete;

private:
    static constexpr unsigned kMaskExceptions = 0x1F80;
    static constexpr unsigned kFlushResults = 0x8000;
    static constexpr unsigned kFlushOperands = 0x0040;
    static constexpr unsigned kMode = kMaskExceptions | kFlushResults | kFlushOperands; // rounding bits 0: to nearest

    unsigned m_before;
};

} // namespace qrb
