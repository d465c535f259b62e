// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/CModDecimator.h"

#include "Audio/CSampleBufferPool.h"
#include "Audio/Processes/RateMath.h"
#include "Core/CNumberText.h"

#include <utility>

namespace qrb {

namespace {

constexpr double kFadeSeconds = 0.015;
constexpr int kDelayBlockSize = 512;

} // namespace

void CModDecimator::reset()
{
    CAudioProcessBase::reset();
    for (CEvener& evener : m_eveners) {
        evener.delay->reset();
        evener.delay->setDelay(1);
    }
}

void CModDecimator::update()
{
    const int latency = inputLatency();
    const bool isOdd = (latency & 1) != 0;
    // A second connection may bring delays along, which move samples between even and odd places.
    const bool isHalf = !isOdd && input().connections().size() == 1;
    input().setHearing(isHalf ? ELineHearing::half : ELineHearing::all);
    if (!isConfigurationChanged()) {
        return;
    }
    m_announced.clear();
    for (int port = 0; port < portCount(); ++port) {
        for (const CAudioLine& line : lines(port)) {
            m_announced.append({line.channel, line.group, port, latency / 2 + (isOdd ? 1 : 0), 0.5 * sampleRate()});
        }
    }
    output().setLines(m_announced.span());
    updateEveners(isOdd);
}

void CModDecimator::updateEveners(bool areNeeded)
{
    CArray<CEvener, 2> before = std::move(m_eveners);
    m_eveners.clear();
    for (const CAudioLineInfo& line : m_announced) {
        if (areNeeded) {
            m_eveners.append({line.port, line.channel, takeDelay(before, line.port, line.channel)});
            m_eveners.back().delay->setFadeLength(roundToInt(kFadeSeconds * sampleRate()));
        }
    }
}

std::unique_ptr<CDSPModDelay> CModDecimator::takeDelay(CArray<CEvener, 2>& from, int port, int channel)
{
    for (CEvener& evener : from) {
        if (evener.port == port && evener.channel == channel && evener.delay != nullptr) {
            return std::move(evener.delay);
        }
    }
    auto delay = std::make_unique<CDSPModDelay>(pool());
    delay->setBlockSize(kDelayBlockSize);
    delay->setDelay(1);
    return delay;
}

bool CModDecimator::takesForm(ESampleForm form) const
{
    return form == ESampleForm::whole || (form == ESampleForm::thinned && m_eveners.empty());
}

void CModDecimator::processLines()
{
    const int length = blockLength() / 2;
    const auto count = static_cast<std::size_t>(length);
    std::size_t index = 0;
    for (int port = 0; port < portCount(); ++port) {
        for (CAudioLine& line : lines(port)) {
            if (line.buffer && length > 0) {
                CSampleBuffer buffer = line.buffer;
                if (!m_eveners.empty()) {
                    buffer = m_eveners[index].delay->process(buffer, blockLength());
                }
                if (buffer.form() == ESampleForm::whole) {
                    const CSampleBuffer source = std::move(buffer);
                    buffer = pool().get(length);
                    takeEverySecond({source.data(), 2 * count}, {buffer.data(), count});
                }
                buffer.setForm(ESampleForm::whole);
                output().send(static_cast<int>(index), buffer, length);
            }
            line.buffer.clear();
            ++index;
        }
    }
}

} // namespace qrb
