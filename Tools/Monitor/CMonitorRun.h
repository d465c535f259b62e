// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Platform/CAutoResetEvent.h"
#include "Platform/CSystemThread.h"
#include "Tools/Monitor/CMonitorOptions.h"
#include "Tools/Monitor/CPlayer.h"
#include "Tools/Render/CFileHost.h"

#include <atomic>
#include <string>

namespace monitor {

class CMonitor;
struct CPicture;

/// One session: an instance that plays on the audio thread, its owner on the calling thread, and a client on a third.
class CMonitorRun {
public:
    explicit CMonitorRun(const CMonitorOptions& options)
        : m_options(options), m_host(options),
          m_player(m_host, options.blockSize, !options.frames && !options.isPlayedOnce)
    {
    }

    /// Does what the options ask for. False with one line in `error`.
    [[nodiscard]] bool run(std::string& error);
    /// The signal that has ended it, which is left to the caller; 0 for none.
    [[nodiscard]] int endSignal() const { return m_endSignal; }

private:
    using FBody = void (CMonitorRun::*)();

    [[nodiscard]] bool runLines(std::string& error);
    [[nodiscard]] bool runTerminal(std::string& error);
    [[nodiscard]] bool startClient(FBody body, std::string& error);
    [[nodiscard]] bool endClient(std::string& error);
    void watchLines();
    void watchTerminal();
    [[nodiscard]] CPicture picture(const CMonitor& monitor, int frame) const;

    const CMonitorOptions& m_options;
    render::CFileHost m_host;
    CPlayer m_player;
    int m_endSignal = 0;

    qrb::platform::CAutoResetEvent m_frameBegin;
    qrb::platform::CAutoResetEvent m_clientDone; ///< with a frame, or for good
    std::atomic<bool> m_isEnding{false};         ///< asked of the client
    std::atomic<bool> m_isClientOver{false};
    std::atomic<bool> m_isSuspendWanted{false};
    std::string m_clientError; ///< read once the client's thread is joined
    qrb::platform::CSystemThread m_client;
};

} // namespace monitor
