// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModAlphaComp.h"

namespace qrb {

void CModAlphaCompModule::regParams()
{
    m_thresholdSlot = regParam(0, 0.0);
    m_ratioSlot = regParam(1, 1.0);
    m_kneeSlot = regParam(2, 6.0);
    m_inverseSlot = regParam(3, 0.0);
    m_downwardSlot = regParam(4, 0.0);
    m_thresholdShiftSlot = regParam(5, 0.0);
}

void CModAlphaCompModule::update()
{
    m_thresholdSum = value(m_thresholdSlot) + value(m_thresholdShiftSlot);
    m_curve = makeGainCurve(value(m_ratioSlot), value(m_kneeSlot));
    m_run = gainKernels().gain[isOn(m_downwardSlot)][isOn(m_inverseSlot)];
}

void CModAlphaCompModule::process()
{
    const auto length = static_cast<std::size_t>(blockLength());
    for (int i = 0; i < outputCount(); ++i) {
        // Linked lines have one level, so one gain.
        int twin = 0;
        while (input(0, twin) != input(0, i))
            ++twin;
        if (twin < i)
            setOutput(i, output(twin));
        else
            m_run(m_curve, m_thresholdSum, input(0, i), writeOutput(i), length);
    }
}

} // namespace qrb
