// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessTerminal.h"
#include "Audio/Processes/CModDef.h"
#include "Audio/Processes/CSoftSilenceModule.h"

namespace qrb {

/// Port 0, or port 1 while bypassed; silence for groups that are not soloed while others are.
class CModBypassModule : public CSoftSilenceModule {
public:
    void regParams() override;
    void update() override;
    void process() override;
    [[nodiscard]] int passedPort() const override { return m_isSilent ? kNoPort : m_usesPort0 ? 0 : 1; }

private:
    [[nodiscard]] bool isOutsideSolo() const;

    CAudioParamSlot m_enableSlot;
    CAudioParamSlot m_groupSoloSlot;
    bool m_usesPort0 = true;
    bool m_isSilent = false;
};

class CModBypass : public CAudioProcessTerminal<CModBypassModule> {};

class CModBypassDef : public CModDef<CModBypass> {};
} // namespace qrb
