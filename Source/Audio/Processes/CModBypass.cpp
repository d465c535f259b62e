// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModBypass.h"

namespace qrb {

void CModBypassModule::regParams()
{
    m_enableSlot = regParam(0, 0.0);
    m_groupSoloSlot = regParam(1, 0.0);
}

void CModBypassModule::update()
{
    m_usesPort0 = value(m_enableSlot) < 0.5;
    m_isSilent = (!m_usesPort0 && lineCount(1) == 0) || isOutsideSolo();
}

bool CModBypassModule::isOutsideSolo() const
{
    bool isAnySoloed = false;
    for (int i = 0; i < m_groupSoloSlot.groupCount(); ++i) {
        if (m_groupSoloSlot.value(i, 0) < 0.5)
            continue;
        if (i == group())
            return false;
        isAnySoloed = true;
    }
    return isAnySoloed;
}

void CModBypassModule::process()
{
    if (m_isSilent)
        silenceAll();
    else
        passAll(m_usesPort0 ? 0 : 1);
}

} // namespace qrb
