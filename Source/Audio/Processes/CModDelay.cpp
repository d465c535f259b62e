// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModDelay.h"

#include "Core/CNumberText.h"

#include <algorithm>

namespace qrb {

namespace {

constexpr double kMaxSeconds = 12.0;
constexpr double kMinFadeSeconds = 0.0001;
constexpr double kMaxBlockSize = 65536.0;

/// Distances that sound travels in a second, for times that are set as distances.
constexpr double kMetresPerSecond = 340.29;
constexpr double kFeetPerSecond = 1116.437;

} // namespace

CErrorPtr CModDelayDef::init()
{
    QRB_TRY(CAudioProcessDefBase::init());
    m_isLatencySeconds = getAttrBool("is-latency-seconds");
    m_isLatencyPositive = getAttrBool("is-latency-positive");
    m_latency = m_isLatencySeconds ? getAttrDouble("latency") : getAttrInt("latency");
    return nullptr;
}

int CModDelayDef::latencySamples(double sampleRate) const
{
    return roundToInt(m_isLatencySeconds ? m_latency * sampleRate : m_latency);
}

void CModDelayModule::regParams()
{
    m_timeSlot = regParam(0, 0.0);
    m_samplesSlot = regParam(1, 0.0);
    m_transitionSlot = regParam(2, 0.01);
    m_blockSizeSlot = regParam(3, CDSPModDelay::kMinBlockSize);
    m_timeModeSlot = regParam(4, 0.0);
}

void CModDelayModule::start()
{
    m_delays.setCount(outputCount(), pool());
}

void CModDelayModule::reset()
{
    m_delays.reset();
}

double CModDelayModule::delaySeconds() const
{
    double seconds = value(m_timeSlot);
    if (const int mode = valueInt(m_timeModeSlot); mode == 1)
        seconds *= 1000.0 / kMetresPerSecond;
    else if (mode == 2)
        seconds *= 1000.0 / kFeetPerSecond;
    return std::clamp(seconds + value(m_samplesSlot) / sampleRate(), -kMaxSeconds, kMaxSeconds);
}

void CModDelayModule::update()
{
    const auto& definition = static_cast<const CModDelayDef&>(node().definition());
    const int latency = definition.latencySamples(sampleRate());
    setLatency(latency);

    int delay = roundToInt(delaySeconds() * sampleRate());
    if (latency > 0)
        delay = definition.isLatencyPositive() ? latency + delay : latency - delay;

    const double blockSize = std::min(value(m_blockSizeSlot), kMaxBlockSize);
    const double fadeSeconds = std::max(kMinFadeSeconds, value(m_transitionSlot));
    m_delays.set(roundToInt(blockSize), roundToInt(fadeSeconds * sampleRate()), std::max(delay, 0));
}

void CModDelayModule::process()
{
    for (int i = 0; i < outputCount(); ++i)
        setOutput(i, m_delays.process(i, line(0, i)->buffer, blockLength()));
}

} // namespace qrb
