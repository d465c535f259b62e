// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessTerminal.h"
#include "Audio/Processes/CModDef.h"
#include "Audio/Processes/GainComputer.h"

namespace qrb {

/// Turns a level into a gain along a static curve, above the threshold or below it, downward or upward. It has no memory.
class CModAlphaCompModule : public CAudioModule {
public:
    void regParams() override;
    void update() override;
    void process() override;

private:
    CAudioParamSlot m_thresholdSlot;
    CAudioParamSlot m_ratioSlot;
    CAudioParamSlot m_kneeSlot;
    CAudioParamSlot m_inverseSlot;
    CAudioParamSlot m_downwardSlot;
    CAudioParamSlot m_thresholdShiftSlot;
    double m_thresholdSum = 0.0; ///< decibels
    CGainCurve m_curve;
    FGainKernel m_run = nullptr;
};

class CModAlphaComp : public CAudioProcessTerminal<CModAlphaCompModule> {};

class CModAlphaCompDef : public CModDef<CModAlphaComp> {};
} // namespace qrb
