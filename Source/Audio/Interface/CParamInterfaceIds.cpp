// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Interface/CParamInterfaceIds.h"

namespace qrb {

std::int32_t CParamInterfaceIds::take(std::uint32_t clientId)
{
    if (m_used.size() >= kMaxCount)
        return 0;
    for (;;) {
        m_last = m_last % kMaxCount + 1;
        const auto id = static_cast<std::int32_t>((clientId << 16) + m_last);
        if (m_used.insert(id).second)
            return id;
    }
}

} // namespace qrb
