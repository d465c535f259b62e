// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessTerminal.h"
#include "Audio/Processes/CModDef.h"
#include "Audio/Processes/CSoftSilenceModule.h"

namespace qrb {

/// Silences a line that is muted, or that is not soloed while others of its kind are.
class CModMuteModule : public CSoftSilenceModule {
public:
    void regParams() override;
    void update() override;
    void process() override;
    [[nodiscard]] int passedPort() const override { return m_isSilent ? kNoPort : 0; }

private:
    [[nodiscard]] bool isOutsideSolo() const;

    CAudioParamSlot m_muteSlot;
    CAudioParamSlot m_soloSlot;
    CAudioParamSlot m_soloCountSlot;
    bool m_isSilent = false;
};

class CModMute : public CAudioProcessTerminal<CModMuteModule> {};

class CModMuteDef : public CModDef<CModMute> {};
} // namespace qrb
