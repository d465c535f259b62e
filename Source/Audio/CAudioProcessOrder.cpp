// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessOrder.h"

#include <algorithm>

namespace qrb {

namespace {

bool isReady(const CAudioProcessLinkList& links)
{
    return std::ranges::all_of(links.links(), [](const CAudioProcessLink& link) {
        return link.newCount == 0 || link.source == nullptr || link.source->isPlaced;
    });
}

} // namespace

bool orderNodes(const CAudioProcessGraph& graph, CArray<CAudioProcessBase*>& sequence)
{
    sequence.clear();
    std::size_t left = 0;
    for (const auto& item : graph.items) {
        item->isPlaced = false;
        left += item->node != nullptr ? 1 : 0;
    }
    for (bool hasProgress = true; hasProgress && left > 0;) {
        hasProgress = false;
        for (const auto& item : graph.items) {
            if (item->node != nullptr && !item->isPlaced && isReady(item->links)) {
                item->isPlaced = true;
                sequence.append(item->node.get());
                --left;
                hasProgress = true;
            }
        }
    }
    return left == 0 && isReady(graph.outputLinks);
}

} // namespace qrb
