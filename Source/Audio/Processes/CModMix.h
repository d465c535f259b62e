// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessTerminal.h"
#include "Audio/Processes/CModDef.h"

namespace qrb {

/// Crosses over from port 0 to port 1 by a raised-cosine law.
class CModMixModule : public CAudioModule {
public:
    void regParams() override;
    void update() override;
    void process() override;
    [[nodiscard]] int passedPort() const override;

private:
    CAudioParamSlot m_mixSlot;
    double m_weight = 0.0;
};

class CModMix : public CAudioProcessTerminal<CModMixModule> {};

class CModMixDef : public CModDef<CModMix> {};
} // namespace qrb
