// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessTerminal.h"
#include "Audio/Processes/CModDef.h"

namespace qrb {

/// Hard clipper: nothing leaves it above its limit.
class CModClipModule : public CAudioModule {
public:
    void regParams() override;
    void start() override;
    void update() override;
    void process() override;

private:
    CAudioParamSlot m_gainSlot;
    double m_level = 1.0;
    double m_limit = 1.0;
};

class CModClip : public CAudioProcessTerminal<CModClipModule> {};

class CModClipDef : public CModDef<CModClip> {
public:
    [[nodiscard]] CErrorPtr init() override;

    /// Where a module of gain 1 clips.
    [[nodiscard]] double clipLevel() const { return m_clipLevel; }

private:
    double m_clipLevel = 0.0;
};
} // namespace qrb
