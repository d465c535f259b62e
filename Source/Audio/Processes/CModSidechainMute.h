// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Processes/CDenormNoise.h"
#include "Audio/Processes/CModDef.h"
#include "Audio/Processes/CModRouting.h"

namespace qrb {

/// Takes channels that only serve as key signals out of the audio path. One line always goes on, silent if need be.
class CModSidechainMute : public CModRouting {
public:
    [[nodiscard]] CErrorPtr init() override;

protected:
    void makeRoutes() override;
    [[nodiscard]] CSampleBuffer makeSilence() override;

private:
    CAudioParamSlot m_enableSlot;
    CDenormNoise m_noise;
};

class CModSidechainMuteDef : public CModDef<CModSidechainMute> {};

} // namespace qrb
