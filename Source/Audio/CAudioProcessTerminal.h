// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessTerminalBase.h"

namespace qrb {

/// Terminal whose modules are of class T.
template <class T>
class CAudioProcessTerminal : public CAudioProcessTerminalBase {
public:
    [[nodiscard]] std::unique_ptr<CAudioModule> createModule() override { return std::make_unique<T>(); }
};

} // namespace qrb
