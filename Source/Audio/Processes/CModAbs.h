// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessTerminal.h"
#include "Audio/Processes/CModDef.h"

namespace qrb {

/// Rectifier.
class CModAbsModule : public CAudioModule {
public:
    void process() override;
};

class CModAbs : public CAudioProcessTerminal<CModAbsModule> {};

class CModAbsDef : public CModDef<CModAbs> {};
} // namespace qrb
