// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModDenormNoise.h"

namespace qrb {

void CModDenormNoiseModule::start()
{
    m_noises.resize(static_cast<std::size_t>(outputCount()));
    for (int i = 0; i < outputCount(); ++i)
        m_noises[static_cast<std::size_t>(i)] = CDenormNoise(seed(i));
}

void CModDenormNoiseModule::process()
{
    const auto length = static_cast<std::size_t>(blockLength());
    for (int i = 0; i < outputCount(); ++i)
        m_noises[static_cast<std::size_t>(i)].add({input(0, i), length}, {writeOutput(i), length});
}

} // namespace qrb
