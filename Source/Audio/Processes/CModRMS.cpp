// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModRMS.h"

#include "Audio/Processes/CLineBatch.h"
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
    CAudioModule* const self = this;
    processTogether({&self, 1});
}

void CModRMSModule::processTogether(std::span<CAudioModule* const> modules)
{
    for (const bool isTwoPole : {false, true}) {
        auto batch = makeLineBatch<CRMSLine>([&](std::span<const CRMSLine> lines) {
            detectRMS(isTwoPole, lines, static_cast<std::size_t>(blockLength()));
        });
        for (CAudioModule* const module : modules) {
            auto& mate = static_cast<CModRMSModule&>(*module);
            for (int i = 0; mate.m_isTwoPole == isTwoPole && i < mate.outputCount(); ++i) {
                batch.add({mate.m_coefficient, &mate.m_states[static_cast<std::size_t>(i)], mate.input(0, i),
                           mate.writeOutput(i)});
            }
        }
    }
}

} // namespace qrb
