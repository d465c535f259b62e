// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModGain.h"

#include "Audio/Processes/LineMath.h"

#include <cmath>
#include <limits>

namespace qrb {

void CModGainModule::regParams()
{
    m_gainSlot = regParam(0, 1.0);
    m_muteSlot = regParam(1, 0.0);
    m_invertSlot = regParam(2, 0.0);
}

void CModGainModule::update()
{
    m_isMuted = isOn(m_muteSlot);
    m_gain = value(m_gainSlot) * (isOn(m_invertSlot) ? -1.0 : 1.0);
    m_isNeutral = !m_isMuted && std::abs(m_gain - 1.0) <= std::numeric_limits<double>::epsilon();
}

void CModGainModule::process()
{
    if (m_isMuted) {
        silenceAll();
        return;
    }
    if (m_isNeutral) {
        passAll(0);
        return;
    }
    const auto length = static_cast<std::size_t>(blockLength());
    for (int i = 0; i < outputCount(); ++i)
        scaleLine({input(0, i), length}, m_gain, {writeOutput(i), length});
}

} // namespace qrb
