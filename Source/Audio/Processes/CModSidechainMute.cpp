// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModSidechainMute.h"

#include "Core/CLog.h"

namespace qrb {

CErrorPtr CModSidechainMute::init()
{
    QRB_TRY(CModRouting::init());
    m_enableSlot = regParam(0, 0.0);
    m_noise = CDenormNoise(CDenormNoise::takeSeed());
    return nullptr;
}

void CModSidechainMute::makeRoutes()
{
    const std::span<const CAudioLine> inputs = lines();
    if (inputs.empty())
        logFormat("%s // %s", "Routing config error in CModSidechainMute!", fullName().toUtf8().c_str());
    for (std::size_t i = 0; i < inputs.size(); ++i)
        if (!isOn(m_enableSlot, inputs[i].channel))
            addRoute({inputs[i].channel, inputs[i].group, static_cast<int>(i)});
    if (routes().empty())
        addRoute({inputs.empty() ? 0 : inputs[0].channel, inputs.empty() ? 0 : inputs[0].group, kSilence});
}

CSampleBuffer CModSidechainMute::makeSilence()
{
    return m_noise.makeBuffer(pool(), blockLength());
}

} // namespace qrb
