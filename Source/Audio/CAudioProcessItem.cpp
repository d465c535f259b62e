// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessItem.h"

#include <algorithm>

namespace qrb {

void CAudioProcessLinkList::add(CAudioProcessItem* source, int sourcePort, int destinationPort)
{
    for (CAudioProcessLink& link : m_links) {
        if (link.source == source && link.sourcePort == sourcePort && link.destinationPort == destinationPort) {
            ++link.newCount;
            return;
        }
    }
    m_links.append({source, sourcePort, destinationPort, 1, 0});
}

void CAudioProcessLinkList::beginRebuild()
{
    for (CAudioProcessLink& link : m_links) {
        link.oldCount = link.newCount;
        link.newCount = 0;
    }
}

void CAudioProcessLinkList::clearNewCounts()
{
    for (CAudioProcessLink& link : m_links) {
        link.newCount = 0;
    }
}

void CAudioProcessLinkList::clearUnreached()
{
    for (CAudioProcessLink& link : m_links) {
        if (link.source != nullptr && !link.source->isReached) {
            link.newCount = 0;
        }
    }
}

void CAudioProcessLinkList::dropUnused()
{
    for (std::size_t i = m_links.size(); i > 0; --i) {
        if (m_links[i - 1].newCount == 0) {
            m_links.removeAt(i - 1);
        }
    }
}

bool CAudioProcessLinkList::hasNewLinks() const
{
    return std::ranges::any_of(m_links, [](const CAudioProcessLink& link) { return link.newCount > 0; });
}

} // namespace qrb
