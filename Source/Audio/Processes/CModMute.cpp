// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModMute.h"

#include <algorithm>

namespace qrb {

namespace {

/// No stack has more instances, and nothing has more bands; a count that comes from an editor may be anything.
constexpr int kMaxSolos = 32;

} // namespace

void CModMuteModule::regParams()
{
    m_muteSlot = regParam(0, 0.0);
    m_soloSlot = regParam(1, 0.0);
    m_soloCountSlot = regParam(2, 0.0);
}

void CModMuteModule::update()
{
    m_isSilent = isOn(m_muteSlot) || isOutsideSolo();
}

bool CModMuteModule::isOutsideSolo() const
{
    const int count = std::min(valueInt(m_soloCountSlot), kMaxSolos);
    bool isAnySoloed = false;
    for (int i = 0; i < count; ++i) {
        if (m_soloSlot.value(group(), i) < 0.5)
            continue;
        if (i == element())
            return false;
        isAnySoloed = true;
    }
    return isAnySoloed;
}

void CModMuteModule::process()
{
    if (m_isSilent)
        silenceAll();
    else
        passAll(0);
}

} // namespace qrb
