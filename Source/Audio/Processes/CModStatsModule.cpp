// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModStatsModule.h"

#include "Audio/CAudioEnv.h"
#include "Audio/CAudioProcessTerminalBase.h"
#include "Audio/CSampleBufferPool.h"
#include "Core/CNumberText.h"

#include <algorithm>
#include <utility>

namespace qrb {

namespace {

constexpr double kLongestPeriod = 1 << 30;

} // namespace

void CModStatsModule::start()
{
    m_writer.open(node().context().viz, node().fullName(), "", EAudioVizType::meter);
}

void CModStatsModule::startPeriod(double rate)
{
    m_rate = rate;
    findPeriod();
    m_left = m_period;
}

void CModStatsModule::findPeriod()
{
    const CAudioEnv* const env = node().context().env;
    const double rate = m_rate > 0.0 ? m_rate : env != nullptr ? env->vizUpdateRateAudio : 30.0;
    const int samples = roundToInt(std::min(sampleRate() / rate, kLongestPeriod));
    m_period = std::max(samples + (samples & 1), kMinPeriod);
}

void CModStatsModule::process()
{
    for (int i = 0; i < outputCount(); ++i)
        passInput(0, i, i);
    if (const bool wasRunning = std::exchange(m_isRunning, m_writer.isActive()); !m_isRunning)
        return;
    else if (!wasRunning)
        clearStats();
    const CSampleBuffer silence =
        input(0) == nullptr || input(1) == nullptr ? pool().getSilence(blockLength()) : CSampleBuffer();
    const double* const a = input(0) == nullptr ? silence.data() : input(0);
    const double* const b = input(1) == nullptr ? silence.data() : input(1);
    const CAudioEnv* const env = node().context().env;
    const double beginTime = env == nullptr ? 0.0 : env->timeNow();
    for (int done = 0; done < blockLength();) {
        const int count = std::min(m_left, blockLength() - done);
        measure(a + done, b + done, count);
        done += count;
        m_left -= count;
        if (m_left == 0)
            endPeriod(beginTime + done / sampleRate());
    }
}

void CModStatsModule::endPeriod(double endTime)
{
    if (std::unique_ptr<CAudioVizData> record = makeRecord(m_writer)) {
        record->channel = channel();
        record->group = group();
        record->index = element();
        record->time = endTime - 0.5 * m_period / sampleRate();
        m_writer.post(std::move(record));
    }
    if (m_rate <= 0.0)
        findPeriod();
    m_left = m_period;
}

} // namespace qrb
