// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/CAutoResetEvent.h"
#include "Platform/CSystemThread.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

namespace render {
class CFileHost;
}

namespace monitor {

/// Plays a host's file on a thread of its own, the audio thread, at the pace of the sample rate or as far as it is told.
class CPlayer {
public:
    /// The host outlives the player. `blockSize`: samples at a time.
    CPlayer(render::CFileHost& host, std::size_t blockSize, bool isRepeating);
    ~CPlayer() { stop(); }
    CPlayer(const CPlayer&) = delete;
    CPlayer& operator=(const CPlayer&) = delete;

    /// Starts the thread. False with one line in `error`.
    [[nodiscard]] bool start(bool isRealTime, std::string& error);
    /// Plays up to a sample and returns when that is done. Not in real time.
    void playTo(std::uint64_t position);
    void stop();

    // Thread: any.

    /// Samples played.
    [[nodiscard]] std::uint64_t position() const { return m_position; }
    /// Whether all of a file that is not repeated has come out of the instance.
    [[nodiscard]] bool isAtEnd() const { return m_isAtEnd; }
    /// Whether the file holds less than it promises.
    [[nodiscard]] bool isDamaged() const { return m_isDamaged; }

private:
    void playOnDemand();
    void playInRealTime();
    void playBlock(std::uint64_t most);

    render::CFileHost& m_host;
    const std::size_t m_blockSize;
    const bool m_isRepeating;
    std::uint64_t m_filePosition = 0; ///< behind the file's end without repeats
    std::atomic<std::uint64_t> m_position{0};
    std::atomic<std::uint64_t> m_target{0};
    std::atomic<bool> m_isOver{false};
    std::atomic<bool> m_isAtEnd{false};
    std::atomic<bool> m_isDamaged{false};
    qrb::platform::CAutoResetEvent m_wake;
    qrb::platform::CAutoResetEvent m_done;
    qrb::platform::CSystemThread m_thread;
};

} // namespace monitor
