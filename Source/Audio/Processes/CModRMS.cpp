// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModRMS.h"

#include "Audio/Processes/OnePole.h"

#include <algorithm>

namespace qrb {

void CModRMSModule::regParams()
{
    m_frequency = regParam(0, 100.0);
    m_type = regParam(1, 0.0);
}

void CModRMSModule::reset()
{
    std::fill(m_states.begin(), m_states.end(), CRMSState{});
}

void CModRMSModule::update()
{
    m_coefficient = onePoleCoefficient(value(m_frequency), sampleRate());
    m_isTwoPole = valueInt(m_type) != 0;
    m_states.resize(static_cast<std::size_t>(outputCount()));
    reset();
}

void CModRMSModule::process()
{
    const auto detect = m_isTwoPole ? detectRMSTwoPole : detectRMSOnePole;
    const auto count = static_cast<std::size_t>(blockLength());
    for (int i = 0; i < outputCount(); ++i)
        detect(m_coefficient, m_states[static_cast<std::size_t>(i)], {input(0, i), count}, {writeOutput(i), count});
}

} // namespace qrb
