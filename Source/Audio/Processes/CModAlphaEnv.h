// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessTerminal.h"
#include "Audio/Processes/CModDef.h"
#include "Audio/Processes/EnvelopeFollower.h"

namespace qrb {

/// Smooths a level or a gain with four program-dependent stages. A line on port 1 holds the output down until that line
/// allows it to rise. Parameters never make the output jump: only the first update of a module sets its states.
///
/// Serves any number of lines. Those of one module, and of modules that do not wait for each other, run side by side.
class CModAlphaEnvModule : public CAudioModule {
public:
    void regParams() override;
    void reset() override;
    void update() override;
    void process() override;
    [[nodiscard]] bool canRunTogether() const override { return true; }
    void processTogether(std::span<CAudioModule* const> modules) override;
    [[nodiscard]] bool canOverlap(const CAudioModule& waiting) const override;

private:
    [[nodiscard]] EFollowerMode mode(const CAudioParamSlot& slot) const;
    [[nodiscard]] EFollowerLoop loopOf(int line) const;

    CAudioParamSlot m_attackSlot;
    CAudioParamSlot m_releaseSlot;
    CAudioParamSlot m_attackModeSlot;
    CAudioParamSlot m_releaseModeSlot;
    CAudioParamSlot m_inverseSlot;
    CAudioParamSlot m_minRateSlot;
    CAudioParamSlot m_punchSlot;
    CAudioParamSlot m_feedbackSlot;
    CFollowerSettings m_settings;
    CFollower m_follower{};
    CArray<CFollowerState, 2> m_states; ///< one a line
};

class CModAlphaEnv : public CAudioProcessTerminal<CModAlphaEnvModule> {};

class CModAlphaEnvDef : public CModDef<CModAlphaEnv> {};
} // namespace qrb
