// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioModulePool.h"

#include "Audio/CAudioProcessTerminalBase.h"

#include <utility>

namespace qrb {

std::unique_ptr<CAudioModule> CAudioModulePool::take(CAudioProcessTerminalBase& node)
{
    if (!m_modules.empty()) {
        std::unique_ptr<CAudioModule> kept = std::move(m_modules.back());
        m_modules.removeLast();
        return kept;
    }
    std::unique_ptr<CAudioModule> module = node.createModule();
    module->m_node = &node;
    module->m_touched.resize(static_cast<std::size_t>(node.moduleParamCount()));
    module->regParams();
    return module;
}

void CAudioModulePool::keep(std::unique_ptr<CAudioModule> module)
{
    if (module != nullptr) {
        module->m_node->cancelDelayedUpdates(&module->m_isDirty);
        m_modules.append(std::move(module));
    }
}

} // namespace qrb
