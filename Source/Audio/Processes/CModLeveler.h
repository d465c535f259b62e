// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessTerminal.h"
#include "Audio/Processes/CModDef.h"

namespace qrb {

/// Moves the levels of linked lines towards one common level.
///
/// The common level lies between the extreme and the mean of the lines, as `mix` says; `linking` says how far each line
/// moves from its own level to the common one. One module serves all lines.
class CModLevelerModule : public CAudioModule {
public:
    void regParams() override;
    void update() override;
    void process() override;
    [[nodiscard]] int passedPort() const override { return m_isUnlinked ? 0 : kNoPort; }

private:
    [[nodiscard]] CSampleBuffer mergeLines();

    CAudioParamSlot m_modeSlot;
    CAudioParamSlot m_mixSlot;
    CAudioParamSlot m_linkingSlot;
    double m_mix = 0.0;
    double m_unlink = 1.0;
    bool m_useMinimum = false;
    bool m_needsExtreme = true;
    bool m_needsMean = false;
    bool m_isUnlinked = true;
    bool m_isLinked = false;
};

class CModLeveler : public CAudioProcessTerminal<CModLevelerModule> {};

class CModLevelerDef : public CModDef<CModLeveler> {};
} // namespace qrb
