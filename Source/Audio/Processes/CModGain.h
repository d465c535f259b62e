// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessTerminal.h"
#include "Audio/Processes/CModDef.h"
#include "Audio/Processes/CSoftSilenceModule.h"

namespace qrb {

/// Gain, mute and inversion of a line.
class CModGainModule : public CSoftSilenceModule {
public:
    void regParams() override;
    void update() override;
    void process() override;
    [[nodiscard]] int passedPort() const override { return m_isNeutral ? 0 : kNoPort; }

private:
    CAudioParamSlot m_gainSlot;
    CAudioParamSlot m_muteSlot;
    CAudioParamSlot m_invertSlot;
    double m_gain = 1.0;
    bool m_isMuted = false;
    bool m_isNeutral = true;
};

class CModGain : public CAudioProcessTerminal<CModGainModule> {};

class CModGainDef : public CModDef<CModGain> {};
} // namespace qrb
