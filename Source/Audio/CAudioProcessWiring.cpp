// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessWiring.h"

#include "Audio/CAudioProcessDef.h"
#include "Audio/CAudioProcessLinkDef.h"

#include <algorithm>

namespace qrb {

bool CAudioProcessGraph::holdsState(int id) const
{
    return id >= 0 &&
           std::ranges::any_of(states, [id](const auto& state) { return state->isOfId(id) && state->holds; });
}

void CAudioProcessWiring::countLinks()
{
    markBypassed();
    for (const auto& item : m_graph.items) {
        item->links.beginRebuild();
    }
    m_graph.outputLinks.beginRebuild();
    if (m_definition.isAutoLinks()) {
        addAutoLinks();
    }
    addExplicitLinks();
    prune();
}

void CAudioProcessWiring::markBypassed()
{
    for (const auto& item : m_graph.items) {
        item->isBypassed = m_graph.holdsState(item->definition->bypassStateId());
    }
}

void CAudioProcessWiring::addAutoLinks()
{
    CArray<CAudioProcessItem*, 32> chain;
    for (const auto& item : m_graph.items) {
        if (item->isLive() && !item->definition->isOutOfOrder()) {
            chain.append(item.get());
        }
    }
    // Node items first, so that all that reaches them is known when it is passed through.
    for (const bool isNodePass : {true, false}) {
        CAudioProcessItem* previous = nullptr;
        for (CAudioProcessItem* item : chain) {
            if (isNodePass && item->isNode) {
                addLink(previous, 0, item, 0);
            } else if (!isNodePass && !item->isNode) {
                addOrPass(previous, 0, item, 0);
            }
            previous = item;
        }
    }
    addOrPass(chain.empty() ? nullptr : chain.back(), 0, nullptr, 0);
}

void CAudioProcessWiring::addExplicitLinks()
{
    for (const auto& [stateId, links] : m_definition.links()) {
        if (stateId != CAudioProcessDefBase::kNoState && !m_graph.holdsState(stateId)) {
            continue;
        }
        addExplicitLinks(links, EPass::intoNodeItems);
        addExplicitLinks(links, EPass::intoOthers);
    }
}

void CAudioProcessWiring::addExplicitLinks(const CArray<const CAudioProcessLinkDef*>& links, EPass pass)
{
    for (const CAudioProcessLinkDef* link : links) {
        const CAudioProcessLinkDef::CEnd& from = link->source();
        const CAudioProcessLinkDef::CEnd& to = link->destination();
        CAudioProcessItem* source = from.isOuter() ? nullptr : m_graph.findItem(from.process);
        CAudioProcessItem* destination = to.isOuter() ? nullptr : m_graph.findItem(to.process);
        const bool isSourceLive = from.isOuter() || (source != nullptr && source->isLive());
        const bool isDestinationLive = to.isOuter() || (destination != nullptr && destination->isLive());
        if (!isSourceLive || !isDestinationLive || !isOn(*link)) {
            continue;
        }
        const bool isIntoNodeItem = destination != nullptr && destination->isNode;
        if (isIntoNodeItem != (pass == EPass::intoNodeItems)) {
            continue;
        }
        if (isIntoNodeItem) {
            addLink(source, from.port, destination, to.port);
        } else {
            addOrPass(source, from.port, destination, to.port);
        }
    }
}

bool CAudioProcessWiring::isOn(const CAudioProcessLinkDef& link) const
{
    return std::ranges::none_of(link.bypassStateIds(), [this](int id) { return m_graph.holdsState(id); });
}

void CAudioProcessWiring::addLink(CAudioProcessItem* source, int sourcePort, CAudioProcessItem* destination,
                                  int destinationPort)
{
    CAudioProcessLinkList& links = destination == nullptr ? m_graph.outputLinks : destination->links;
    links.add(source, sourcePort, destinationPort);
}

void CAudioProcessWiring::addOrPass(CAudioProcessItem* source, int sourcePort, CAudioProcessItem* destination,
                                    int destinationPort)
{
    if (source != nullptr && source->isNode) {
        passThrough(*source, destination, destinationPort);
    } else {
        addLink(source, sourcePort, destination, destinationPort);
    }
}

void CAudioProcessWiring::passThrough(CAudioProcessItem& nodeItem, CAudioProcessItem* destination, int destinationPort)
{
    struct CStep {
        CAudioProcessItem* item;
        std::size_t nextLink;
    };
    for (const auto& item : m_graph.items) {
        item->isVisited = false;
    }
    CArray<CStep, 16> way;
    way.append({&nodeItem, 0});
    nodeItem.isVisited = true;
    while (!way.empty()) {
        CStep& step = way.back();
        if (step.nextLink == step.item->links.links().size()) {
            way.removeLast();
            continue;
        }
        const CAudioProcessLink link = step.item->links.links()[step.nextLink++];
        if (link.newCount == 0) {
            continue;
        }
        if (link.source == nullptr || !link.source->isNode) {
            addLink(link.source, link.sourcePort, destination, destinationPort);
        } else if (!link.source->isVisited) {
            link.source->isVisited = true;
            way.append({link.source, 0});
        }
    }
}

void CAudioProcessWiring::prune()
{
    for (const auto& item : m_graph.items) {
        item->isReached = false;
    }
    for (bool hasProgress = true; hasProgress;) {
        hasProgress = false;
        for (const auto& item : m_graph.items) {
            if (item->isReached) {
                continue;
            }
            item->isReached = std::ranges::any_of(item->links.links(), [](const CAudioProcessLink& link) {
                return link.newCount > 0 && link.destinationPort == 0 &&
                       (link.source == nullptr || link.source->isReached);
            });
            hasProgress = hasProgress || item->isReached;
        }
    }
    // What is fed by nothing has nothing to say either, so nobody keeps it alive to listen to it.
    for (const auto& item : m_graph.items) {
        if (item->isReached) {
            item->links.clearUnreached();
        } else {
            item->links.clearNewCounts();
        }
    }
    m_graph.outputLinks.clearUnreached();
}

} // namespace qrb
