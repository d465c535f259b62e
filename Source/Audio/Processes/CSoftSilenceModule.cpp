// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CSoftSilenceModule.h"

namespace qrb {

void CSoftSilenceModule::start()
{
    m_noise = CDenormNoise(seed());
}

void CSoftSilenceModule::passAll(int port)
{
    for (int i = 0; i < outputCount(); ++i)
        passInput(port, i, i);
}

void CSoftSilenceModule::silenceAll()
{
    // One noise for all lines, so that none depends on how many samples the others took from the generator.
    const CSampleBuffer noise = m_noise.makeBuffer(pool(), blockLength());
    for (int i = 0; i < outputCount(); ++i)
        setOutput(i, noise);
}

} // namespace qrb
