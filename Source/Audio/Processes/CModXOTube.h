// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessTerminal.h"
#include "Audio/Processes/CModDef.h"
#include "Audio/Processes/Tube.h"

namespace qrb {

/// Saturator of two curves with a morph between them that follows its own output.
///
/// Serves any number of lines. Those of one module, and of modules that do not wait for each other, run side by side.
class CModXOTubeModule : public CAudioModule {
public:
    void regParams() override;
    void reset() override;
    void update() override;
    void process() override;
    [[nodiscard]] bool canRunTogether() const override { return true; }
    void processTogether(std::span<CAudioModule* const> modules) override;

private:
    static constexpr int kSlots = 24;

    [[nodiscard]] CTubeSettings readSettings() const;

    CAudioParamSlot m_slots[kSlots];
    CTube m_tube{};
    bool m_isBlockedByFeedback = false;
    ETubeLoop m_loop = ETubeLoop::blocked;
    CArray<CTubeState, 2> m_states; ///< one a line
};

class CModXOTube : public CAudioProcessTerminal<CModXOTubeModule> {};

class CModXOTubeDef : public CModDef<CModXOTube> {};
} // namespace qrb
