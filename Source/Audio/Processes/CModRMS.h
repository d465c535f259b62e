// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessTerminal.h"
#include "Audio/Processes/CModDef.h"
#include "Audio/Processes/RMSDetector.h"

namespace qrb {

/// Level of a line: the root of its smoothed square. A change starts from silence and relies on the crossfade.
class CModRMSModule : public CAudioModule {
public:
    void regParams() override;
    void reset() override;
    void update() override;
    void process() override;
    [[nodiscard]] bool canRunTogether() const override { return true; }
    void processTogether(std::span<CAudioModule* const> modules) override;

private:
    CAudioParamSlot m_frequency;
    CAudioParamSlot m_type;
    CArray<CRMSState, 1> m_states; ///< one a line
    double m_coefficient = 0.0;
    bool m_isTwoPole = false;
};

class CModRMS : public CAudioProcessTerminal<CModRMSModule> {};

class CModRMSDef : public CModDef<CModRMS> {};
} // namespace qrb
