// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessPlan.h"

#include "Audio/CAudioLineSource.h"
#include "Audio/CAudioProcessPlanner.h"
#include "Audio/CAudioProcessTerminalBase.h"

#include <utility>

namespace qrb {

void CAudioProcessPlan::beginBlock(CAudioProcessBase& root, std::uint32_t paramChanges)
{
    const bool isQuiet = std::exchange(m_paramChanges, paramChanges) == paramChanges &&
                         m_changes.requests == m_requests && m_changes.structure == m_structure &&
                         !root.input().hasChanges();
    m_changes.isPlanned = m_isEnabled && isMade() && isQuiet;
}

void CAudioProcessPlan::process(CAudioLineSource& source, CAudioProcessBase& root)
{
    if (m_changes.isPlanned) {
        run();
        return;
    }
    m_requests = m_changes.requests;
    root.process();
    if (m_changes.structure != m_structure) {
        clear();
        m_structure = m_changes.structure;
    } else if (m_isEnabled && !isMade()) {
        CAudioProcessPlanner(m_changes).make(source, root, *this);
    }
}

void CAudioProcessPlan::clear()
{
    m_nodes.clear();
    m_steps.clear();
    m_changes.isPlanned = false;
}

void CAudioProcessPlan::addStep(std::span<CAudioProcessBase* const> nodes, EStep kind)
{
    m_nodes.appendAll(nodes);
    m_steps.append({nodes.size(), kind});
}

CAudioProcessBase* CAudioProcessPlan::singleNode(std::size_t step) const
{
    std::size_t at = 0;
    for (std::size_t i = 0; i < step; ++i) {
        at += m_steps[i].nodeCount;
    }
    return m_steps[step].nodeCount == 1 ? m_nodes[at] : nullptr;
}

void CAudioProcessPlan::joinSteps(std::size_t first, std::size_t last, EStep kind)
{
    for (; last > first; --last) {
        m_steps[first].nodeCount += m_steps[last].nodeCount;
        m_steps.removeAt(last);
    }
    m_steps[first].kind = kind;
}

std::size_t CAudioProcessPlan::countNodes(EStep kind) const
{
    std::size_t count = 0;
    for (const CStep& step : m_steps) {
        count += step.nodeCount > 1 && step.kind == kind ? step.nodeCount : 0;
    }
    return count;
}

void CAudioProcessPlan::run()
{
    std::span<CAudioProcessBase* const> left = m_nodes.span();
    for (const CStep& step : m_steps) {
        const auto nodes = left.first(step.nodeCount);
        left = left.subspan(step.nodeCount);
        if (nodes.size() == 1) {
            nodes[0]->processPlanned();
        } else if (step.kind == EStep::inSeries) {
            CAudioProcessTerminalBase::processInSeries(nodes);
        } else if (step.kind == EStep::inPieces) {
            CAudioProcessTerminalBase::processInPieces(nodes);
        } else {
            CAudioProcessTerminalBase::processTogether(nodes);
        }
    }
}

} // namespace qrb
