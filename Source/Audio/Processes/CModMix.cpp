// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModMix.h"

#include "Audio/Processes/LineMath.h"

#include <cmath>
#include <numbers>

namespace qrb {

namespace {

/// Weights this near to an end count as the end.
constexpr double kNearWeight = 1e-10;
constexpr double kFarWeight = 0.9999999999;

} // namespace

void CModMixModule::regParams()
{
    m_mixSlot = regParam(0, 0.0);
}

void CModMixModule::update()
{
    m_weight = 0.5 - 0.5 * std::cos(std::numbers::pi * value(m_mixSlot));
}

int CModMixModule::passedPort() const
{
    if (m_weight <= kNearWeight || lineCount(1) == 0)
        return 0;
    return m_weight >= kFarWeight ? 1 : kNoPort;
}

void CModMixModule::process()
{
    const auto length = static_cast<std::size_t>(blockLength());
    for (int i = 0; i < outputCount(); ++i) {
        const double* const second = input(1, i);
        if (second == nullptr || m_weight <= kNearWeight)
            passInput(0, i, i);
        else if (m_weight >= kFarWeight)
            passInput(1, i, i);
        else
            blendLines({input(0, i), length}, {second, length}, m_weight, {writeOutput(i), length});
    }
}

} // namespace qrb
