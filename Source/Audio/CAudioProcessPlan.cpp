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
                         m_changes.requests == m_requests && !root.input().hasChanges();
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
    m_groups.clear();
    m_changes.isPlanned = false;
}

void CAudioProcessPlan::addGroup(std::span<CAudioProcessBase* const> nodes)
{
    m_nodes.appendAll(nodes);
    m_groups.append(nodes.size());
}

std::size_t CAudioProcessPlan::jointCount() const
{
    std::size_t count = 0;
    for (const std::size_t size : m_groups) {
        count += size > 1 ? size : 0;
    }
    return count;
}

void CAudioProcessPlan::run()
{
    std::span<CAudioProcessBase* const> left = m_nodes.span();
    for (const std::size_t size : m_groups) {
        const auto group = left.first(size);
        left = left.subspan(size);
        if (size == 1) {
            group[0]->processPlanned();
        } else {
            CAudioProcessTerminalBase::processTogether(group);
        }
    }
}

} // namespace qrb
