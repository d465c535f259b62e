// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioModule.h"
#include "Core/CArray.h"

#include <memory>

namespace qrb {

class CAudioProcessTerminalBase;

/// Modules a node has made and does not use now: reused before new ones are made, so that fades allocate nothing.
class CAudioModulePool {
public:
    /// A kept module, or a new one of the node's.
    [[nodiscard]] std::unique_ptr<CAudioModule> take(CAudioProcessTerminalBase& node);
    /// Keeps a module; null does nothing.
    void keep(std::unique_ptr<CAudioModule> module);

private:
    CArray<std::unique_ptr<CAudioModule>, 2> m_modules;
};

} // namespace qrb
