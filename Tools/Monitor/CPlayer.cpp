// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Monitor/CPlayer.h"

#include "Platform/Clock.h"
#include "Tools/Render/CFileHost.h"

#include <algorithm>
#include <cstring>

namespace monitor {

namespace {

/// Who is later than this, in seconds, has slept and does not catch up.
constexpr double kMostLate = 0.25;

} // namespace

CPlayer::CPlayer(render::CFileHost& host, std::size_t blockSize, bool isRepeating)
    : m_host(host), m_blockSize(blockSize), m_isRepeating(isRepeating)
{
}

bool CPlayer::start(bool isRealTime, std::string& error)
{
    using qrb::platform::EThreadPriority;
    const int failure = m_thread.start(
        "audio", [this, isRealTime] { isRealTime ? playInRealTime() : playOnDemand(); },
        isRealTime ? EThreadPriority::timeCritical : EThreadPriority::normal);
    if (failure != 0)
        error = std::string("no thread for audio: ") + std::strerror(failure);
    return failure == 0;
}

void CPlayer::stop()
{
    m_isOver = true;
    m_wake.signal();
    m_thread.join();
}

void CPlayer::playTo(std::uint64_t position)
{
    m_target = position;
    m_wake.signal();
    m_done.wait();
}

void CPlayer::playOnDemand()
{
    for (;;) {
        m_wake.wait();
        if (m_isOver)
            return;
        while (m_position < m_target)
            playBlock(m_target - m_position);
        m_done.signal();
    }
}

void CPlayer::playInRealTime()
{
    const double rate = m_host.sampleRate();
    double begin = qrb::platform::clockSeconds(); // of the first sample
    while (!m_isOver) {
        const double due = begin + static_cast<double>(m_position) / rate;
        const double late = qrb::platform::clockSeconds() - due;
        if (late < 0.0) {
            static_cast<void>(m_wake.waitFor(-late));
            continue;
        }
        if (late > kMostLate)
            begin += late;
        playBlock(m_blockSize);
    }
}

void CPlayer::playBlock(std::uint64_t most)
{
    const std::uint64_t length = m_host.file().frames();
    if (m_isRepeating && m_filePosition >= length) {
        m_filePosition = 0;
        if (!m_host.rewind()) {
            m_filePosition = length;
            m_isDamaged = true;
        }
    }
    const std::uint64_t left = m_filePosition < length ? length - m_filePosition : m_blockSize;
    const auto count = static_cast<std::size_t>(std::min({most, left, static_cast<std::uint64_t>(m_blockSize)}));
    const std::size_t got = m_host.playBlock(count);
    if (m_filePosition < length && got < count)
        m_isDamaged = true;
    m_filePosition += count;
    m_position += count;
    if (!m_isRepeating && m_filePosition >= length + static_cast<std::uint64_t>(m_host.latency()))
        m_isAtEnd = true;
}

} // namespace monitor
