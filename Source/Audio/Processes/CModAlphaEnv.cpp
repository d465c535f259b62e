// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModAlphaEnv.h"

#include "Audio/Processes/CLineBatch.h"

#include <algorithm>

namespace qrb {

void CModAlphaEnvModule::regParams()
{
    m_attackSlot = regParam(0, 0.01);
    m_releaseSlot = regParam(1, 0.25);
    m_attackModeSlot = regParam(2, 1.0);
    m_releaseModeSlot = regParam(3, 1.0);
    m_inverseSlot = regParam(4, 0.0);
    m_minRateSlot = regParam(5, 0.2);
    m_punchSlot = regParam(6, 1.0);
    m_feedbackSlot = regParam(7, 0.0);
}

EFollowerMode CModAlphaEnvModule::mode(const CAudioParamSlot& slot) const
{
    constexpr EFollowerMode kModes[] = {EFollowerMode::fast, EFollowerMode::normal, EFollowerMode::slow};
    return kModes[std::clamp(valueInt(slot), 0, 2)];
}

void CModAlphaEnvModule::reset()
{
    std::ranges::fill(m_states, restOfFollower(m_settings));
}

void CModAlphaEnvModule::update()
{
    m_settings.attack = value(m_attackSlot);
    m_settings.release = value(m_releaseSlot);
    m_settings.attackMode = mode(m_attackModeSlot);
    m_settings.releaseMode = mode(m_releaseModeSlot);
    m_settings.isInverse = isOn(m_inverseSlot);
    m_settings.isFeedback = isOn(m_feedbackSlot);
    m_settings.minRate = value(m_minRateSlot);
    m_settings.punch = value(m_punchSlot);
    m_follower = makeFollower(m_settings, sampleRate());
    if (isFirstUpdate()) {
        m_states.resize(static_cast<std::size_t>(outputCount()));
        reset();
    }
}

EFollowerLoop CModAlphaEnvModule::loopOf(int line) const
{
    return followerLoop(m_settings, CAudioModule::line(1, line) != nullptr);
}

bool CModAlphaEnvModule::canOverlap(const CAudioModule& waiting) const
{
    // Two lines wait for themselves so long that two more fit in between.
    constexpr int kMostLines = 2;
    const auto* const other = dynamic_cast<const CModAlphaEnvModule*>(&waiting);
    if (other == nullptr || widestVectors() != EVectorWidth::quads || outputCount() > kMostLines ||
        other->outputCount() > kMostLines)
        return false;
    return m_settings.isFeedback ? loopOf(0) == other->loopOf(0) : !other->m_settings.isFeedback;
}

void CModAlphaEnvModule::process()
{
    CAudioModule* const self = this;
    processTogether({&self, 1});
}

void CModAlphaEnvModule::processTogether(std::span<CAudioModule* const> modules)
{
    std::uint32_t used = 0;
    for (const CAudioModule* const module : modules) {
        const auto& mate = static_cast<const CModAlphaEnvModule&>(*module);
        for (int i = 0; i < mate.outputCount(); ++i)
            used |= 1u << static_cast<unsigned>(mate.loopOf(i));
    }
    const bool hasFeedback = used >> static_cast<unsigned>(EFollowerLoop::levelFeedback) != 0;
    const bool isMixed = (used & (used - 1)) != 0 && !hasFeedback && widestVectors() == EVectorWidth::quads;
    if (isMixed)
        used = 1u << static_cast<unsigned>(EFollowerLoop::mixed);
    for (std::size_t loop = 0; loop < kFollowerLoops; ++loop) {
        if ((used >> loop & 1u) == 0)
            continue;
        auto batch = makeLineBatch<CFollowerLine>([&](std::span<const CFollowerLine> lines) {
            runFollowers(static_cast<EFollowerLoop>(loop), lines, static_cast<std::size_t>(blockLength()));
        });
        for (CAudioModule* const module : modules) {
            auto& mate = static_cast<CModAlphaEnvModule&>(*module);
            for (int i = 0; i < mate.outputCount(); ++i) {
                const EFollowerLoop own = mate.loopOf(i);
                if (isMixed || own == static_cast<EFollowerLoop>(loop)) {
                    batch.add({&mate.m_follower, &mate.m_states[static_cast<std::size_t>(i)], mate.input(0, i),
                               mate.input(1, i), mate.writeOutput(i), own != EFollowerLoop::level});
                }
            }
        }
    }
}

} // namespace qrb
