// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModAlphaEnv.h"

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
    m_run = followerKernel(m_settings.isInverse, m_settings.isFeedback, false);
    m_runHolding = followerKernel(m_settings.isInverse, m_settings.isFeedback, true);
    if (isFirstUpdate()) {
        m_states.resize(static_cast<std::size_t>(outputCount()));
        reset();
    }
}

void CModAlphaEnvModule::processPair(int first, int second)
{
    CFollowerLines lines{};
    const int places[] = {first, second};
    for (std::size_t i = 0; i < 2; ++i) {
        lines.states[i] = &m_states[static_cast<std::size_t>(places[i])];
        lines.in[i] = input(0, places[i]);
        lines.opening[i] = input(1, places[i]);
        lines.out[i] = i == 1 && first == second ? lines.out[0] : writeOutput(places[i]);
    }
    const bool isHolding = lines.opening[0] != nullptr;
    (isHolding ? m_runHolding : m_run)(m_follower, lines, static_cast<std::size_t>(blockLength()));
}

void CModAlphaEnvModule::process()
{
    int done = 0;
    while (done < outputCount()) {
        const bool isPair = done + 1 < outputCount() && (input(1, done) == nullptr) == (input(1, done + 1) == nullptr);
        processPair(done, isPair ? done + 1 : done);
        done += isPair ? 2 : 1;
    }
}

} // namespace qrb
