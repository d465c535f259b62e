// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModSpectrum.h"

#include "Audio/CAudioEnv.h"
#include "Audio/CAudioProcessTerminalBase.h"
#include "Audio/CSampleBufferPool.h"
#include "Audio/CopySamples.h"
#include "Audio/Processes/CSpectrumFrame.h"
#include "Audio/Viz/CAudioVizDataSpectrum.h"
#include "Core/CNumberText.h"
#include "Core/CProcessState.h"
#include "Platform/CRealFFTPool.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>
#include <utility>

namespace qrb {

namespace {

constexpr int kMinLog2Size = 6;
constexpr int kMaxLog2Size = 16;
/// Records come a little faster than frames are drawn, so that none is drawn twice.
constexpr double kRateMargin = 1.3;

} // namespace

void CModSpectrumModule::regParams()
{
    m_blockSize = regParam(0, 5.0);
    m_overlap = regParam(1, 0.5);
    m_averageTime = regParam(2, 0.3);
    m_type = regParam(3, 0.0);
    m_resetSlot = regParam(4, 0.0);
    m_secondType = regParam(5, 0.0);
    m_secondEnable = regParam(6, 0.0);
}

void CModSpectrumModule::start()
{
    CAudioVizCollector* const collector = node().context().viz;
    m_main.writer.open(collector, node().fullName(), "", EAudioVizType::spectrum);
    m_second.writer.open(collector, node().fullName(), "-sec", EAudioVizType::spectrum);
}

void CModSpectrumModule::reset()
{
    if (m_size != 0)
        clearSpectra();
}

void CModSpectrumModule::update()
{
    const CAudioParamSlot* const clearing[] = {&m_blockSize, &m_type, &m_secondType, &m_secondEnable, &m_resetSlot};
    const bool isAnew =
        isFirstUpdate() || std::ranges::any_of(clearing, [this](const auto* slot) { return isTouched(*slot); });
    if (isAnew)
        setFrameSize();
    const auto size = static_cast<double>(m_size);
    const double hop = std::clamp(size * (1.0 - value(m_overlap)), 1.0, size);
    m_hop = static_cast<std::size_t>(roundToInt(hop));
    if (isAnew)
        clearSpectra();
    m_untilFrame = std::min(m_untilFrame, m_hop);
    m_average = value(m_averageTime);
    const double frames = sampleRate() / static_cast<double>(m_hop) * m_average;
    m_rates.value = 1.0 - std::pow(0.1, 1.0 / frames);
    m_rates.variance = 1.0 - std::pow(0.1, 1.0 / (0.5 * frames));
}

void CModSpectrumModule::setFrameSize()
{
    const int log2Size = kMinLog2Size + std::clamp(valueInt(m_blockSize), 0, kMaxLog2Size - kMinLog2Size);
    m_size = std::size_t{1} << log2Size;
    m_plan = &processState().fftPlans->plan(static_cast<unsigned>(log2Size));
    m_samples.resize(2 * m_size);
    m_hasSecond = isOn(m_secondEnable);
    for (CSpectrum* spectrum : {&m_main, &m_second})
        spectrum->writer.setBinCount(m_size / 2 + 1);
}

void CModSpectrumModule::clearSpectra()
{
    std::fill_n(m_samples.begin(), m_size, 0.0);
    m_end = m_size;
    m_untilFrame = m_hop;
    m_main.bins.start(CSpectrumAccumulator::kindOf(valueInt(m_type)), m_size);
    if (m_hasSecond)
        m_second.bins.start(CSpectrumAccumulator::kindOf(valueInt(m_secondType)), m_size);
    m_hasPosted = false;
    m_resetTime = streamTime();
}

double CModSpectrumModule::streamTime() const
{
    const CAudioEnv* const env = node().context().env;
    return env == nullptr ? 0.0 : env->timeNow();
}

void CModSpectrumModule::process()
{
    for (int i = 0; i < outputCount(); ++i)
        passInput(0, i, i);
    if (const bool wasRunning = std::exchange(m_isRunning, isActive()); !m_isRunning)
        return;
    else if (!wasRunning)
        clearSpectra();
    const double* const samples = input(0);
    if (samples == nullptr)
        return;
    const double beginTime = streamTime();
    const auto length = static_cast<std::size_t>(blockLength());
    for (std::size_t done = 0; done < length;) {
        const std::size_t count = std::min(m_untilFrame, length - done);
        collect(samples + done, count);
        done += count;
        m_untilFrame -= count;
        if (m_untilFrame == 0) {
            m_untilFrame = m_hop;
            runFrame(beginTime + static_cast<double>(done) / sampleRate());
        }
    }
}

void CModSpectrumModule::collect(const double* samples, std::size_t count)
{
    while (count > 0) {
        if (m_end == 2 * m_size) {
            copySamples(m_samples.data() + m_size, m_size, m_samples.data());
            m_end = m_size;
        }
        const std::size_t part = std::min(count, 2 * m_size - m_end);
        copySamples(samples, part, m_samples.data() + m_end);
        m_end += part;
        samples += part;
        count -= part;
    }
}

bool CModSpectrumModule::findFrame()
{
    CSampleBuffer room = pool().get(static_cast<int>(CSpectrumFrame::termRoom(m_size)));
    CSampleBuffer aligned;
    const double* samples = m_samples.data() + (m_end - m_size);
    if (reinterpret_cast<std::uintptr_t>(samples) % platform::CRealFFTPlan::kAlignment != 0) {
        aligned = pool().get(static_cast<int>(m_size));
        copySamples(samples, m_size, aligned.data());
        samples = aligned.data();
    }
    CSpectrumFrame frame;
    if (!frame.transform(*m_plan, samples, room.data()))
        return false;
    CSpectrumAccumulator* const spectra[] = {&m_main.bins, &m_second.bins};
    CSpectrumAccumulator::add(frame, std::span(spectra, m_hasSecond ? 2 : 1), m_rates);
    return true;
}

void CModSpectrumModule::runFrame(double time)
{
    if (!findFrame())
        return; // or it would stay in the bins for ever
    if (m_hasPosted && time - m_postTime < 1.0 / viewRate() / kRateMargin)
        return;
    if (m_main.bins.isDamaged() || (m_hasSecond && m_second.bins.isDamaged()))
        return clearSpectra();
    post(m_main, time);
    if (m_hasSecond)
        post(m_second, time);
    m_hasPosted = true;
    m_postTime = time;
}

double CModSpectrumModule::viewRate() const
{
    const CAudioEnv* const env = node().context().env;
    return env == nullptr ? 30.0 : env->vizUpdateRateAudio;
}

void CModSpectrumModule::post(CSpectrum& spectrum, double time)
{
    if (!spectrum.writer.isActive() || !spectrum.bins.hasResult())
        return;
    std::unique_ptr<CAudioVizDataSpectrum> record = spectrum.writer.take<CAudioVizDataSpectrum>();
    if (record == nullptr)
        return;
    const ESpectrumKind kind = spectrum.bins.kind();
    const bool isSinceReset = kind == ESpectrumKind::max || kind == ESpectrumKind::average;
    record->channel = channel();
    record->group = group();
    record->index = element();
    record->time = time - 0.5 * static_cast<double>(m_size) / sampleRate();
    record->sampleRate = sampleRate();
    record->blockSize = static_cast<std::int32_t>(m_size);
    record->spectrumKind = static_cast<std::int32_t>(kind);
    record->average = isSinceReset ? time - m_resetTime : m_average;
    record->bins.resize(m_size / 2 + 1);
    spectrum.bins.copyTo(record->bins.span());
    spectrum.writer.post(std::move(record));
}

} // namespace qrb
