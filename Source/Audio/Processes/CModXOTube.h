// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessTerminal.h"
#include "Audio/Processes/CModDef.h"
#include "Audio/Processes/Tube.h"

namespace qrb {

/// Saturator of two curves with a morph between them that follows its own output.
///
/// Serves any number of lines; where one module has them all, they run in pairs at the cost of one.
class CModXOTubeModule : public CAudioModule {
public:
    void regParams() override;
    void reset() override;
    void update() override;
    void process() override;

private:
    static constexpr int kSlots = 24;

    [[nodiscard]] CTubeSettings readSettings() const;

    CAudioParamSlot m_slots[kSlots];
    CTube m_tube{};
    bool m_isBlockedByFeedback = false;
    FTubeKernel m_run = nullptr;
    CArray<CTubeState, 2> m_states; ///< one a line
};

class CModXOTube : public CAudioProcessTerminal<CModXOTubeModule> {};

class CModXOTubeDef : public CModDef<CModXOTube> {};
} // namespace qrb
