// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessTerminal.h"
#include "Audio/Processes/CModDef.h"

namespace qrb {

/// Port 0 times port 1, or divided by it. A division by zero follows the arithmetic: infinite, or no number.
class CModMultModule : public CAudioModule {
public:
    void process() override;
};

class CModMult : public CAudioProcessTerminal<CModMultModule> {};

class CModMultDef : public CModDef<CModMult> {
public:
    [[nodiscard]] CErrorPtr init() override;

    [[nodiscard]] bool isDivision() const { return m_isDivision; }

private:
    bool m_isDivision = false;
};
} // namespace qrb
