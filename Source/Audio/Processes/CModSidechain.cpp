// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModSidechain.h"

#include "Audio/CAudioParamStorage.h"

namespace qrb {

CErrorPtr CModSidechain::init()
{
    QRB_TRY(CModRouting::init());
    m_sourceSlot = regParam(0, 0.0);
    m_muteSlot = regParam(1, 0.0);
    m_noise = CDenormNoise(CDenormNoise::takeSeed());
    return nullptr;
}

void CModSidechain::makeRoutes()
{
    const std::span<const CAudioLine> inputs = lines();
    const bool hasSource = m_sourceSlot.isBound() && m_sourceSlot.storage->hasData();
    CArray<CRoute, CAudioProcessPort::kMaxLines> silent;
    for (const CAudioLine& line : inputs) {
        if (isOn(m_muteSlot, line.channel))
            continue;
        const int source = hasSource ? m_sourceSlot.valueInt(paramGroup(), line.channel) : line.channel;
        std::size_t i = 0;
        while (i < inputs.size() && inputs[i].channel != source)
            ++i;
        if (i < inputs.size())
            addRoute({line.channel, line.group, static_cast<int>(i)});
        else
            silent.append({line.channel, line.group, kSilence});
    }
    for (const CRoute& route : silent)
        addRoute(route);
}

CSampleBuffer CModSidechain::makeSilence()
{
    return m_noise.makeBuffer(pool(), blockLength());
}

} // namespace qrb
