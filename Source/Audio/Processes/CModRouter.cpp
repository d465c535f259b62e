// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModRouter.h"

#include <algorithm>

namespace qrb {

CErrorPtr CModRouterDef::init()
{
    QRB_TRY(CModDef<CModRouter>::init());
    m_isOutput = getAttrBool("is-output");
    return nullptr;
}

CErrorPtr CModRouter::init()
{
    QRB_TRY(CModRouting::init());
    m_routingSlot = regParam(0, 0.0);
    m_groupingSlot = regParam(1, 0.0);
    return nullptr;
}

int CModRouter::routingOf(int channel) const
{
    // Routings count channels from 1; 0 is none.
    return std::max(m_routingSlot.valueInt(paramGroup(), channel), 0) - 1;
}

int CModRouter::groupOf(int channel) const
{
    return std::max(m_groupingSlot.valueInt(paramGroup(), channel), 0);
}

bool CModRouter::hasRouteTo(int channel) const
{
    return std::ranges::any_of(routes(), [channel](const CRoute& route) { return route.channel == channel; });
}

void CModRouter::makeInputRoutes()
{
    const std::span<const CAudioLine> inputs = lines();
    const int listedCount = m_routingSlot.elementCount(paramGroup());
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        if (inputs[i].channel >= listedCount)
            continue; // else it would go where the default element sends host channel 0
        const int destination = routingOf(inputs[i].channel);
        if (destination >= 0 && !hasRouteTo(destination))
            addRoute({destination, groupOf(destination), static_cast<int>(i)});
    }
}

void CModRouter::makeOutputRoutes()
{
    const std::span<const CAudioLine> inputs = lines();
    const int hostChannelCount = m_routingSlot.elementCount(paramGroup());
    for (int hostChannel = 0; hostChannel < hostChannelCount; ++hostChannel) {
        const int channel = routingOf(hostChannel);
        for (std::size_t i = 0; channel >= 0 && i < inputs.size(); ++i)
            if (inputs[i].channel == channel) {
                addRoute({hostChannel, groupOf(hostChannel), static_cast<int>(i)});
                break;
            }
    }
}

void CModRouter::makeRoutes()
{
    if (static_cast<const CModRouterDef&>(definition()).isOutput())
        makeOutputRoutes();
    else
        makeInputRoutes();
    if (routes().empty())
        addRoute({0, 0, kSilence});
}

} // namespace qrb
