// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessPlanner.h"

#include "Audio/CAudioGraphChanges.h"
#include "Audio/CAudioLineSource.h"
#include "Audio/CAudioProcessComposite.h"
#include "Audio/CAudioProcessConnection.h"
#include "Audio/CAudioProcessDefBase.h"
#include "Audio/CAudioProcessPlan.h"
#include "Audio/CAudioProcessTerminalBase.h"

#include <algorithm>

namespace qrb {

namespace {

/// A line that several sources or a delay make up has to be put together before it goes on.
bool isTransparent(CAudioProcessBase& node)
{
    for (int port = 0; port < node.portCount(); ++port) {
        if (!std::ranges::all_of(node.lines(port), CAudioProcessBase::isAsItComes)) {
            return false;
        }
    }
    return true;
}

/// Whether a node only hands on what it gets.
bool isPassing(CAudioProcessBase& node)
{
    const auto count = static_cast<int>(node.output().lines().size());
    for (int line = 0; line < count; ++line) {
        if (node.passedLine(line) == nullptr) {
            return false;
        }
    }
    return count > 0 && isTransparent(node);
}

/// The slot that a connection's line arrives at; null where it is dropped.
CAudioLine* findSlot(CAudioProcessBase& node, const CAudioProcessConnection& connection, int line)
{
    for (int port = 0; port < node.portCount(); ++port) {
        for (CAudioLine& slot : node.lines(port)) {
            for (const CAudioLine::CSource& source : slot.sources) {
                if (source.connection == &connection && source.index == line) {
                    return &slot;
                }
            }
        }
    }
    return nullptr;
}

bool runsJointly(CAudioProcessBase& node)
{
    const auto* terminal = dynamic_cast<CAudioProcessTerminalBase*>(&node);
    return terminal != nullptr && terminal->canRunTogether();
}

} // namespace

void CAudioProcessPlanner::make(CAudioLineSource& source, CAudioProcessBase& root, CAudioProcessPlan& plan)
{
    collect(root);
    routeSource(source, kNone);
    for (std::size_t i = 0; i < m_steps.size(); ++i) {
        CAudioProcessBase& node = *m_steps[i].node;
        node.planInputs();
        auto* composite = dynamic_cast<CAudioProcessComposite*>(&node);
        if (composite == nullptr) {
            routeSource(node.output(), i);
            continue;
        }
        for (CAudioLineSource* inner : composite->innerSources()) {
            routeSource(*inner, i);
        }
    }
    order(plan);
    overlap(plan);
}

void CAudioProcessPlanner::overlap(CAudioProcessPlan& plan)
{
    constexpr std::size_t kMostSteps = 8;
    const auto terminalAt = [&plan](std::size_t step) {
        return dynamic_cast<CAudioProcessTerminalBase*>(plan.singleNode(step));
    };
    for (std::size_t first = 0; first < plan.stepCount(); ++first) {
        const CAudioProcessTerminalBase* const node = terminalAt(first);
        for (std::size_t last = first + 1; node != nullptr && last < plan.stepCount(); ++last) {
            const CAudioProcessTerminalBase* const behind = terminalAt(last);
            if (behind == nullptr || last - first >= kMostSteps || !isTransparent(*terminalAt(last))) {
                break;
            }
            if (node->canOverlap(*behind)) {
                plan.joinSteps(first, last, CAudioProcessPlan::EStep::inPieces);
                break;
            }
        }
    }
}

std::size_t CAudioProcessPlanner::addStep(CAudioProcessBase& node, bool isJoint)
{
    CStep& step = m_steps.emplace();
    step.node = &node;
    step.isJoint = isJoint;
    return m_steps.size() - 1;
}

void CAudioProcessPlanner::collect(CAudioProcessBase& node)
{
    auto* composite = dynamic_cast<CAudioProcessComposite*>(&node);
    if (composite == nullptr) {
        m_owners[&node.input()] = {&node, nullptr, isPassing(node) ? kNone : addStep(node, runsJointly(node))};
        return;
    }
    m_owners[&node.input()] = {&node, nullptr, isTransparent(*composite) ? kNone : addStep(node, false)};
    m_owners[&composite->innerOutput()] = {&node, composite, kNone};
    for (CAudioProcessBase* inner : composite->sequence()) {
        collect(*inner);
    }
}

void CAudioProcessPlanner::routeSource(CAudioLineSource& source, std::size_t step)
{
    CArray<CAudioLineRoute, 8> routes;
    for (int line = 0; line < static_cast<int>(source.lines().size()); ++line) {
        follow(source, line, line, routes);
    }
    for (const CAudioLineRoute& route : routes) {
        const auto owner = m_owners.find(route.sink);
        if (owner != m_owners.end() && step != kNone) {
            m_steps[step].followers.append(owner->second.step);
            ++m_steps[owner->second.step].waitsFor;
        }
    }
    source.setRoutes(routes.span(), m_changes);
}

void CAudioProcessPlanner::follow(CAudioLineSource& source, int index, int firstIndex,
                                  CArray<CAudioLineRoute, 8>& routes)
{
    for (const auto& connection : source.connections()) {
        if (CAudioProcessConnection::CLine* line = connection->findLine(index)) {
            followInto(*connection, static_cast<int>(line - connection->lines().begin()), firstIndex, routes);
        }
    }
}

void CAudioProcessPlanner::followInto(CAudioProcessConnection& connection, int line, int firstIndex,
                                      CArray<CAudioLineRoute, 8>& routes)
{
    const auto found = m_owners.find(&connection.sink());
    CAudioProcessConnection::CLine& from = connection.lines()[static_cast<std::size_t>(line)];
    if (found == m_owners.end()) {
        routes.append({firstIndex, &from.buffer, &from.length, &connection.sink()});
        return;
    }
    const COwner& owner = found->second;
    if (owner.inside != nullptr) {
        int place = line;
        for (CAudioProcessConnection* before : connection.sink().connections()) {
            if (before == &connection) {
                break;
            }
            place += static_cast<int>(before->lines().size());
        }
        follow(owner.node->output(), place, firstIndex, routes);
        return;
    }
    CAudioLine* const slot = findSlot(*owner.node, connection, line);
    if (slot == nullptr) {
        return;
    }
    if (owner.step != kNone) {
        const bool isDirect = CAudioProcessBase::isAsItComes(*slot);
        routes.append({firstIndex, isDirect ? &slot->buffer : &from.buffer, isDirect ? &slot->length : &from.length,
                       &connection.sink()});
        return;
    }
    if (auto* composite = dynamic_cast<CAudioProcessComposite*>(owner.node)) {
        const CAudioProcessComposite::CInnerLine inner = composite->innerLine(*slot);
        if (inner.source != nullptr) {
            follow(*inner.source, inner.index, firstIndex, routes);
        }
        return;
    }
    for (int out = 0; out < static_cast<int>(owner.node->output().lines().size()); ++out) {
        if (owner.node->passedLine(out) == slot) {
            follow(owner.node->output(), out, firstIndex, routes);
        }
    }
}

bool CAudioProcessPlanner::isInSeries(std::size_t step, std::size_t next) const
{
    auto* before = dynamic_cast<CAudioProcessTerminalBase*>(m_steps[step].node);
    auto* behind = dynamic_cast<CAudioProcessTerminalBase*>(m_steps[next].node);
    const auto& followers = m_steps[step].followers;
    return before != nullptr && behind != nullptr && &before->definition() == &behind->definition() &&
           before->canRunInSeries() && behind->canRunInSeries() && behind->isFedBy(*before) &&
           followers.size() == behind->lines().size() &&
           std::ranges::all_of(followers, [next](std::size_t follower) { return follower == next; });
}

void CAudioProcessPlanner::order(CAudioProcessPlan& plan)
{
    CArray<CAudioProcessBase*, 8> series; // of the steps before
    std::size_t last = kNone;
    const auto addSeries = [&] {
        if (!series.empty()) {
            plan.addStep(series.span(), CAudioProcessPlan::EStep::inSeries);
        }
        series.clear();
    };
    struct CKind {
        std::size_t left = 0;
        std::size_t ready = 0;
    };
    CMap<const CAudioProcessDefBase*, CKind> kinds;
    CArray<std::size_t> ready;
    const auto kindOf = [&](std::size_t step) -> CKind& { return kinds[&m_steps[step].node->definition()]; };
    const auto setReady = [&](std::size_t step) {
        ready.insertAt(static_cast<std::size_t>(std::ranges::lower_bound(ready, step) - ready.begin()), step);
        ++kindOf(step).ready;
    };
    for (std::size_t i = 0; i < m_steps.size(); ++i) {
        ++kindOf(i).left;
    }
    for (std::size_t i = 0; i < m_steps.size(); ++i) {
        if (m_steps[i].waitsFor == 0) {
            setReady(i);
        }
    }
    while (!ready.empty()) {
        // Nodes that could still meet others of their kind let all others go first.
        const auto isComplete = [&](std::size_t step) {
            return !m_steps[step].isJoint || kindOf(step).ready == kindOf(step).left;
        };
        const auto found = std::ranges::find_if(ready, isComplete);
        const std::size_t first = found == ready.end() ? ready[0] : *found;
        CArray<std::size_t, 8> group;
        for (const std::size_t step : ready) {
            const bool isMate = m_steps[first].isJoint && m_steps[step].isJoint &&
                                &m_steps[step].node->definition() == &m_steps[first].node->definition();
            if (step == first || isMate) {
                group.append(step);
            }
        }
        CArray<CAudioProcessBase*, 8> nodes;
        for (const std::size_t step : group) {
            ready.removeAt(ready.indexOf(step));
            --kindOf(step).left;
            --kindOf(step).ready;
            nodes.append(m_steps[step].node);
        }
        if (last == kNone || nodes.size() > 1 || !isInSeries(last, first)) {
            addSeries();
        }
        last = nodes.size() > 1 ? kNone : first;
        if (nodes.size() > 1) {
            plan.addStep(nodes.span(), CAudioProcessPlan::EStep::together);
        } else {
            series.append(nodes[0]);
        }
        for (const std::size_t step : group) {
            for (const std::size_t follower : m_steps[step].followers) {
                if (--m_steps[follower].waitsFor == 0) {
                    setReady(follower);
                }
            }
        }
    }
    addSeries();
}

} // namespace qrb
