// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessTerminal.h"
#include "Audio/Processes/CModDef.h"
#include "Audio/Processes/EnvelopeFollower.h"

namespace qrb {

/// Smooths a level or a gain with four program-dependent stages. A line on port 1 holds the output down until that line
/// allows it to rise. Parameters never make the output jump: only the first update of a module sets its states.
///
/// Serves any number of lines; where one module has them all, they run in pairs at the cost of one.
class CModAlphaEnvModule : public CAudioModule {
public:
    void regParams() override;
    void reset() override;
    void update() override;
    void process() override;

private:
    [[nodiscard]] EFollowerMode mode(const CAudioParamSlot& slot) const;
    void processPair(int first, int second);

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
    FFollowerKernel m_run = nullptr;
    FFollowerKernel m_runHolding = nullptr;
    CArray<CFollowerState, 2> m_states; ///< one a line
};

class CModAlphaEnv : public CAudioProcessTerminal<CModAlphaEnvModule> {};

class CModAlphaEnvDef : public CModDef<CModAlphaEnv> {};
} // namespace qrb
