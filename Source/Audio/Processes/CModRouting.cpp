// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModRouting.h"

#include "Audio/CSampleBufferPool.h"

namespace qrb {

void CModRouting::update()
{
    const bool areParamsChanged = takeParamChanges();
    if (!areParamsChanged && !isConfigurationChanged())
        return;
    m_routes.clear();
    makeRoutes();
    announceRoutes();
    noteStructureChange();
}

const CAudioLine* CModRouting::passedLine(int outputLine)
{
    const CRoute& route = m_routes[static_cast<std::size_t>(outputLine)];
    return route.source == kSilence ? nullptr : &lines(route.port)[static_cast<std::size_t>(route.source)];
}

CSampleBuffer CModRouting::makeSilence()
{
    return pool().getSilence(blockLength());
}

void CModRouting::addRoute(const CRoute& route)
{
    // More than a port takes would be dropped at the next node anyway.
    if (m_routes.size() < static_cast<std::size_t>(CAudioProcessPort::kMaxLines * portCount()))
        m_routes.append(route);
}

bool CModRouting::isOn(const CAudioParamSlot& slot, int element) const
{
    return slot.value(paramGroup(), element) >= 0.5;
}

void CModRouting::announceRoutes()
{
    CArray<CAudioLineInfo, 16> infos;
    for (const CRoute& route : m_routes)
        infos.append({route.channel, route.group, route.port, inputLatency(), sampleRate()});
    output().setLines(infos.span());
}

void CModRouting::processLines()
{
    CSampleBuffer silence;
    for (std::size_t i = 0; i < m_routes.size(); ++i) {
        const CRoute& route = m_routes[i];
        if (route.source == kSilence && !silence)
            silence = makeSilence();
        const CSampleBuffer& buffer =
            route.source == kSilence ? silence : lines(route.port)[static_cast<std::size_t>(route.source)].buffer;
        output().send(static_cast<int>(i), buffer, blockLength());
    }
}

} // namespace qrb
