// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModLeveler.h"

#include "Audio/CAudioProcessPort.h"
#include "Audio/CSampleBufferPool.h"
#include "Audio/Processes/LineMath.h"
#include "Audio/Processes/MergeLines.h"

#include <array>
#include <cmath>
#include <limits>

namespace qrb {

namespace {

bool isSame(double a, double b)
{
    return std::abs(a - b) <= std::numeric_limits<double>::epsilon();
}

} // namespace

void CModLevelerModule::regParams()
{
    m_modeSlot = regParam(0, 0.0);
    m_mixSlot = regParam(1, 0.0);
    m_linkingSlot = regParam(2, 0.0);
}

void CModLevelerModule::update()
{
    m_mix = value(m_mixSlot);
    const double linking = value(m_linkingSlot);
    m_useMinimum = valueInt(m_modeSlot) != 0;
    m_needsExtreme = !isSame(m_mix, 1.0);
    m_needsMean = !isSame(m_mix, 0.0);
    m_isUnlinked = isSame(linking, 0.0);
    m_isLinked = isSame(linking, 1.0);
    m_unlink = 1.0 - linking;
}

CSampleBuffer CModLevelerModule::mergeLines()
{
    std::array<const double*, CAudioProcessPort::kMaxLines> inputs{};
    const auto lineCount = static_cast<std::size_t>(outputCount());
    for (std::size_t i = 0; i < lineCount; ++i)
        inputs[i] = input(0, static_cast<int>(i));
    const std::span<const double* const> lines(inputs.data(), lineCount);
    const auto length = static_cast<std::size_t>(blockLength());

    CSampleBuffer extreme;
    if (m_needsExtreme) {
        extreme = pool().get(blockLength());
        (m_useMinimum ? minimumOfLines : maximumOfLines)(lines, {extreme.data(), length});
        if (!m_needsMean)
            return extreme;
    }
    CSampleBuffer mean = pool().get(blockLength());
    const std::span<double> out(mean.data(), length);
    meanOfLines(lines, out);
    if (m_needsExtreme)
        blendLines({extreme.data(), length}, out, m_mix, out);
    return mean;
}

void CModLevelerModule::process()
{
    if (m_isUnlinked) {
        for (int i = 0; i < outputCount(); ++i)
            passInput(0, i, i);
        return;
    }
    const CSampleBuffer common = mergeLines();
    const auto length = static_cast<std::size_t>(blockLength());
    for (int i = 0; i < outputCount(); ++i)
        if (m_isLinked)
            setOutput(i, common);
        else
            blendLines({common.data(), length}, {input(0, i), length}, m_unlink, {writeOutput(i), length});
}

} // namespace qrb
