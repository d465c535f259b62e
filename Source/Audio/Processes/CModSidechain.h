// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Processes/CDenormNoise.h"
#include "Audio/Processes/CModDef.h"
#include "Audio/Processes/CModRouting.h"

namespace qrb {

/// Gives each channel its key signal: a line of any channel of the same input, or silence where that channel is missing.
class CModSidechain : public CModRouting {
public:
    [[nodiscard]] CErrorPtr init() override;

protected:
    void makeRoutes() override;
    [[nodiscard]] CSampleBuffer makeSilence() override;

private:
    CAudioParamSlot m_sourceSlot;
    CAudioParamSlot m_muteSlot;
    CDenormNoise m_noise;
};

class CModSidechainDef : public CModDef<CModSidechain> {};

} // namespace qrb
