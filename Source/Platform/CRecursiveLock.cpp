// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/CRecursiveLock.h"

#include <immintrin.h>

namespace qrb::platform {

void CRecursiveLock::enter()
{
    for (unsigned attempt = 0; attempt < m_spinCount; ++attempt) {
        if (m_mutex.try_lock())
            return;
        _mm_pause();
    }
    m_mutex.lock();
}

} // namespace qrb::platform
