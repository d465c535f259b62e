// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CFilePlayer.h"

#include "Platform/Clock.h"
#include "Tools/Product/BoundedFile.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace render {

namespace {

/// Largest state that is read, bytes.
constexpr std::size_t kMaxStateBytes = std::size_t{80} << 20;

} // namespace

bool CFilePlayer::open(std::string& error)
{
    if (!m_options.inFile.empty() && !m_in.open(m_options.inFile, error))
        return false;
    if (!m_options.sidechainFile.empty()) {
        if (!m_sidechain.open(m_options.sidechainFile, error))
            return false;
        if (m_in.channels() > 0 && m_sidechain.sampleRate() != m_in.sampleRate()) {
            error = "'" + m_options.sidechainFile + "' has another sample rate than '" + m_options.inFile + "'";
            return false;
        }
    }
    if (!m_options.stateFile.empty())
        error = product::readBoundedFile(m_options.stateFile, kMaxStateBytes, m_state);
    return error.empty();
}

void CFilePlayer::prepareBuffers()
{
    m_inBuffers.setShape(channelCount(), m_options.blockSize, m_options.useDouble);
    m_outBuffers.setShape(channelCount(), m_options.blockSize, m_options.useDouble);
    m_keyBuffers.setShape(keyCount(), m_options.blockSize, m_options.useDouble);
}

bool CFilePlayer::addEvent(const CSetting& setting, int index, double value, std::string& error)
{
    const double frame = std::floor(setting.seconds * m_in.sampleRate() + 0.5);
    if (m_in.channels() > 0 && frame >= static_cast<double>(m_in.frames())) {
        char time[32];
        std::snprintf(time, sizeof time, "%g", setting.seconds);
        error = std::string("--at ") + time + " lies behind the end of '" + m_options.inFile + "'";
        return false;
    }
    m_events.push_back({static_cast<std::uint64_t>(frame), index, value});
    return true;
}

void CFilePlayer::sortEvents()
{
    std::stable_sort(m_events.begin(), m_events.end(),
                     [](const CTimedEvent& a, const CTimedEvent& b) { return a.frame < b.frame; });
}

std::size_t CFilePlayer::readBlock(CSoundFileReader& file, std::vector<double>& samples, std::size_t frames)
{
    const auto stride = static_cast<std::size_t>(file.channels());
    samples.assign(frames * stride, 0.0);
    return stride > 0 ? file.read(samples.data(), frames) : 0;
}

void CFilePlayer::queueEvents(std::uint64_t position, std::size_t frames)
{
    for (; m_nextEvent < m_events.size() && m_events[m_nextEvent].frame < position + frames; ++m_nextEvent) {
        const CTimedEvent& event = m_events[m_nextEvent];
        queueEvent(static_cast<int>(event.frame - position), event.index, event.value);
    }
}

std::size_t CFilePlayer::playBlock(std::size_t frames)
{
    const std::size_t got = readBlock(m_in, m_samples, frames);
    readBlock(m_sidechain, m_keys, frames);
    m_inBuffers.take(m_samples, frames);
    m_keyBuffers.take(m_keys, frames);
    queueEvents(m_position, frames);
    const double start = qrb::platform::clockSeconds();
    processBlock(static_cast<int>(frames));
    m_seconds += qrb::platform::clockSeconds() - start;
    m_position += frames;
    return got;
}

bool CFilePlayer::rewind()
{
    return m_in.rewind() && (m_sidechain.channels() == 0 || m_sidechain.rewind());
}

} // namespace render
