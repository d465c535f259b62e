// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessTerminal.h"
#include "Audio/Processes/CDenormNoise.h"
#include "Audio/Processes/CModDef.h"

namespace qrb {

/// Adds noise of about -220 dB.
class CModDenormNoiseModule : public CAudioModule {
public:
    void start() override;
    void process() override;

private:
    CArray<CDenormNoise, 1> m_noises; ///< one a line
};

class CModDenormNoise : public CAudioProcessTerminal<CModDenormNoiseModule> {};

class CModDenormNoiseDef : public CModDef<CModDenormNoise> {};
} // namespace qrb
