// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModMeter.h"

#include "Audio/Processes/OnePole.h"
#include "Audio/Viz/CAudioVizDataMeter.h"
#include "Core/CNumberText.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qrb {

namespace {

constexpr double kMalformedFps = 30.0;
/// Relates the time of a mean to the corner of its smoother.
constexpr double kTimeFactor = 1.362;
constexpr double kShortestRelease = 0.0001; // seconds

} // namespace

CErrorPtr CModMeterDef::init()
{
    QRB_TRY(CModDef<CModMeter>::init());
    if (hasAttr("fps") && (!parseNumber(getAttrString("fps").trimmed(), m_fps) || !(m_fps > 0.0)))
        m_fps = kMalformedFps;
    m_isDiff = getAttrBool("is-diff");
    m_isCompression = getAttrBool("is-compression");
    m_isInverted = getAttrBool("is-inverted");
    return {};
}

void CModMeterModule::regParams()
{
    m_peakTime = regParam(0, 1.0);
    m_rmsTime = regParam(1, 0.15);
    m_gainSlot = regParam(2, 1.0);
    m_biasTime = regParam(3, 0.0);
    m_useBias = regParam(4, 0.0);
    m_release = regParam(5, 0.0);
    m_peakGainSlot = regParam(6, 1.0);
    m_rmsTime2 = regParam(7, 0.15);
    m_release2 = regParam(8, 0.0);
    m_useTime2 = regParam(9, 0.0);
}

void CModMeterModule::start()
{
    const auto& definition = static_cast<const CModMeterDef&>(node().definition());
    m_isDiff = definition.isDiff();
    m_isCompression = definition.isCompression();
    m_isInverted = definition.isInverted();
    m_fps = definition.fps();
    CModStatsModule::start();
}

void CModMeterModule::reset()
{
    clearStats();
}

void CModMeterModule::update()
{
    m_gain = value(m_gainSlot);
    m_peakGain = value(m_peakGainSlot);
    const CAudioParamSlot* const shaping[] = {&m_peakTime, &m_rmsTime,  &m_biasTime, &m_useBias,
                                              &m_release,  &m_rmsTime2, &m_release2, &m_useTime2};
    if (isFirstUpdate() || std::ranges::any_of(shaping, [this](const auto* slot) { return isTouched(*slot); }))
        clearStats();
}

double CModMeterModule::rateOf(double seconds) const
{
    // Nothing follows faster than within one sample.
    constexpr double kHighest = std::numbers::pi;
    const double corner = 2.0 * std::numbers::pi / (sampleRate() * kTimeFactor * seconds);
    return onePoleCoefficient(corner > 0.0 && corner < kHighest ? corner : kHighest);
}

void CModMeterModule::chooseKernel()
{
    const bool useBias = isOn(m_useBias);
    if (m_isDiff)
        m_kernel = useBias ? measureRatioWithBias : measureRatio;
    else if (m_isCompression)
        m_kernel = useBias ? measureGainWithBias : measureGain;
    else
        m_kernel = measureLevel;
}

void CModMeterModule::clearStats()
{
    const bool useTime2 = isOn(m_useTime2);
    const double release = value(useTime2 ? m_release2 : m_release);
    startPeriod(m_fps);
    m_rates.mean = rateOf(value(useTime2 ? m_rmsTime2 : m_rmsTime));
    m_rates.bias = rateOf(value(m_biasTime));
    m_rates.release = release >= kShortestRelease ? rateOf(release) : 1.0;
    const double initial = isOfMinima() ? 1.0 : 0.0;
    m_levels.setAll(initial);
    const double periods = sampleRate() * value(m_peakTime) / period();
    m_hold.start(roundToInt(std::clamp(periods, 1.0, double{CPeakHold::kMaxLength})), initial, isOfMinima());
    chooseKernel();
}

std::unique_ptr<CAudioVizData> CModMeterModule::makeRecord(CAudioVizWriter& writer)
{
    if (!std::isfinite(m_levels.mean + m_levels.mean2 + m_levels.bias + m_levels.tracker)) {
        clearStats(); // or what is no number would stay for ever
        return nullptr;
    }
    double value = 0.0;
    double peak = 0.0;
    if (hasPeaks()) {
        m_hold.add(m_levels.chunkPeak);
        m_levels.chunkPeak = m_levels.tracker;
        const double held = m_hold.held();
        const double highest = isOfMinima() ? std::min(m_levels.chunkPeak, held) : std::max(m_levels.chunkPeak, held);
        value = std::sqrt(m_levels.tracker) * m_gain;
        peak = std::sqrt(highest) * m_peakGain;
    } else {
        value = std::sqrt(meanRatio(m_levels)) * m_gain;
        peak = value * m_peakGain;
    }
    std::unique_ptr<CAudioVizDataMeter> record = writer.take<CAudioVizDataMeter>();
    if (record != nullptr) {
        record->value = m_isInverted ? 1.0 / value : value;
        record->peak = m_isInverted ? 1.0 / peak : peak;
    }
    return record;
}

} // namespace qrb
