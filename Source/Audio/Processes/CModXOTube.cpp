// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModXOTube.h"

#include "Audio/Processes/CLineBatch.h"

#include <algorithm>

namespace qrb {

namespace {

/// Allocation indices.
enum ESlot {
    kLimit1,
    kBias1,
    kKnee1,
    kLimit2,
    kBias2,
    kKnee2,
    kGain2,
    kHPFreq,
    kHPFeedback,
    kLPEnable,
    kLPFreq,
    kXOverGain,
    kXOverBias,
    kXOverFltFreq,
    kXOverFltBW,
    kInGain,
    kInBias,
    kXOverMon,
    kOutGain1,
    kOGEnable,
    kOutGainCorr1,
    kOutGainCorr2,
    kOutGainCorr3,
    kOutGain,
};

} // namespace

void CModXOTubeModule::regParams()
{
    const CTubeSettings unbound;
    const auto& [first, second] = unbound.curves;
    const double kUnbound[kSlots] = {
        first.limit,
        first.bias,
        first.knee,
        second.limit,
        second.bias,
        second.knee,
        second.gain,
        unbound.blockerFrequency,
        0.0,
        0.0,
        unbound.lowPassFrequency,
        unbound.morphGain,
        unbound.morphBias,
        unbound.morphFrequency,
        unbound.morphBandwidth,
        unbound.drive,
        unbound.bias,
        0.0,
        unbound.balance,
        0.0,
        unbound.correctionBelow,
        unbound.correctionAbove,
        unbound.correctionHigh,
        unbound.outputGain,
    };
    for (int i = 0; i < kSlots; ++i)
        m_slots[i] = regParam(i, kUnbound[i]);
}

CTubeSettings CModXOTubeModule::readSettings() const
{
    CTubeSettings settings;
    settings.curves[0] = {value(m_slots[kLimit1]), value(m_slots[kBias1]), value(m_slots[kKnee1]), 1.0};
    settings.curves[1] = {value(m_slots[kLimit2]), value(m_slots[kBias2]), value(m_slots[kKnee2]),
                          value(m_slots[kGain2])};
    settings.blockerFrequency = value(m_slots[kHPFreq]);
    settings.isBlockedByFeedback = isOn(m_slots[kHPFeedback]);
    settings.hasLowPass = isOn(m_slots[kLPEnable]);
    settings.lowPassFrequency = value(m_slots[kLPFreq]);
    settings.morphGain = value(m_slots[kXOverGain]);
    settings.morphBias = value(m_slots[kXOverBias]);
    settings.morphFrequency = value(m_slots[kXOverFltFreq]);
    settings.morphBandwidth = value(m_slots[kXOverFltBW]);
    settings.drive = value(m_slots[kInGain]);
    settings.bias = value(m_slots[kInBias]);
    settings.hasBalance = isOn(m_slots[kOGEnable]);
    settings.balance = value(m_slots[kOutGain1]);
    settings.correctionBelow = value(m_slots[kOutGainCorr1]);
    settings.correctionAbove = value(m_slots[kOutGainCorr2]);
    settings.correctionHigh = value(m_slots[kOutGainCorr3]);
    settings.outputGain = value(m_slots[kOutGain]);
    return settings;
}

void CModXOTubeModule::reset()
{
    std::ranges::fill(m_states, restOfTube(m_tube, m_isBlockedByFeedback));
}

void CModXOTubeModule::update()
{
    const CTubeSettings settings = readSettings();
    m_tube = makeTube(settings, sampleRate());
    m_isBlockedByFeedback = settings.isBlockedByFeedback;
    m_loop = tubeLoop(m_isBlockedByFeedback, isOn(m_slots[kXOverMon]));
    if (isFirstUpdate()) {
        m_states.resize(static_cast<std::size_t>(outputCount()));
        reset();
    }
}

void CModXOTubeModule::process()
{
    CAudioModule* const self = this;
    processTogether({&self, 1});
}

void CModXOTubeModule::processTogether(std::span<CAudioModule* const> modules)
{
    std::uint32_t used = 0;
    for (const CAudioModule* const module : modules)
        used |= 1u << static_cast<unsigned>(static_cast<const CModXOTubeModule&>(*module).m_loop);
    for (std::size_t loop = 0; loop < kTubeLoops; ++loop) {
        if ((used >> loop & 1u) == 0)
            continue;
        auto batch = makeLineBatch<CTubeLine>([&](std::span<const CTubeLine> lines) {
            runTubes(static_cast<ETubeLoop>(loop), lines, static_cast<std::size_t>(blockLength()));
        });
        for (CAudioModule* const module : modules) {
            auto& mate = static_cast<CModXOTubeModule&>(*module);
            for (int i = 0; mate.m_loop == static_cast<ETubeLoop>(loop) && i < mate.outputCount(); ++i) {
                batch.add(
                    {&mate.m_tube, &mate.m_states[static_cast<std::size_t>(i)], mate.input(0, i), mate.writeOutput(i)});
            }
        }
    }
}

} // namespace qrb
