// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Monitor/CMonitorRun.h"

#include "Core/CObject.h"
#include "Platform/CMessageLoop.h"
#include "Tools/Monitor/CTerminal.h"
#include "Tools/Monitor/Client/CMonitor.h"
#include "Tools/Monitor/Client/CScreen.h"
#include "Tools/Monitor/Client/PlainLines.h"
#include "Tools/Monitor/Client/PrintableText.h"

#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iterator>

namespace monitor {

namespace {

constexpr double kIdleSeconds = 0.01; // how often an instance's owner looks after it
constexpr double kKeySeconds = 0.1;

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP};

std::atomic<int> g_endSignal{0};
std::atomic<bool> g_isStopped{false};

void onSignal(int number)
{
    if (number == SIGTSTP)
        g_isStopped = true;
    else
        g_endSignal = number;
}

/// Notes the signals that end or stop the process, as long as it lives.
class CSignalWatch {
public:
    CSignalWatch()
    {
        g_endSignal = 0;
        g_isStopped = false;
        struct sigaction action {};
        action.sa_handler = onSignal;
        for (std::size_t i = 0; i < std::size(kSignals); ++i)
            sigaction(kSignals[i], &action, &m_before[i]);
    }
    ~CSignalWatch()
    {
        for (std::size_t i = 0; i < std::size(kSignals); ++i)
            sigaction(kSignals[i], &m_before[i], nullptr);
    }
    CSignalWatch(const CSignalWatch&) = delete;
    CSignalWatch& operator=(const CSignalWatch&) = delete;

private:
    struct sigaction m_before[std::size(kSignals)];
};

/// Runs all that is due.
void runDue(qrb::platform::CMessageLoop& loop)
{
    while (loop.pump() > 0) {
    }
}

} // namespace

bool CMonitorRun::run(std::string& error)
{
    if (!m_options.frames && !CTerminal::isThere()) {
        error = "this is no terminal; --frames N prints plain lines";
        return false;
    }
    if (!m_host.open(error) || !m_host.prepare(false, error))
        return false;
    const bool isDone = m_options.frames ? runLines(error) : runTerminal(error);
    m_player.stop();
    if (isDone && m_player.isDamaged())
        error = "'" + m_options.inFile + "' is damaged: its data ends early";
    return error.empty();
}

bool CMonitorRun::startClient(FBody body, std::string& error)
{
    const int failure = m_client.start(
        "monitor",
        [this, body] {
            (this->*body)();
            m_isClientOver = true;
            m_clientDone.signal();
        },
        qrb::platform::EThreadPriority::normal);
    if (failure != 0)
        error = std::string("no thread for the client: ") + std::strerror(failure);
    return failure == 0;
}

bool CMonitorRun::endClient(std::string& error)
{
    m_isEnding = true;
    m_frameBegin.signal();
    m_client.join();
    if (error.empty())
        error = m_clientError;
    return error.empty();
}

bool CMonitorRun::runLines(std::string& error)
{
    if (!m_player.start(false, error) || !startClient(&CMonitorRun::watchLines, error))
        return false;
    m_clientDone.wait(); // built
    for (int frame = 1; frame <= *m_options.frames && !m_isClientOver; ++frame) {
        m_player.playTo(static_cast<std::uint64_t>(std::llround(frame * m_host.sampleRate() / m_options.fps)));
        m_host.runOwner();
        m_frameBegin.signal();
        m_clientDone.wait();
    }
    return endClient(error);
}

void CMonitorRun::watchLines()
{
    double now = 0.0;
    qrb::platform::CMessageLoop loop([&now] { return now; });
    CClientTree tree;
    if (!tree.build(m_host.instance().root(), loop, m_options.fps, m_clientError))
        return;
    CMonitor monitor(tree);
    for (int frame = 1;; ++frame) {
        m_clientDone.signal();
        m_frameBegin.wait();
        if (m_isEnding)
            return;
        // A little behind the timers, which round.
        now = (frame + 0.25) / m_options.fps;
        const auto key = static_cast<std::size_t>(frame) - 1;
        if (key < m_options.keys.size() && !monitor.press(m_options.keys[key]))
            return;
        runDue(loop);
        const std::string text = plainLines(picture(monitor, frame));
        if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
            m_clientError = std::string("cannot write: ") + std::strerror(errno);
            return;
        }
    }
}

bool CMonitorRun::runTerminal(std::string& error)
{
    const CSignalWatch signals;
    if (!m_player.start(true, error) || !startClient(&CMonitorRun::watchTerminal, error))
        return false;
    while (!m_isClientOver && g_endSignal == 0 && !m_player.isDamaged() && !m_player.isAtEnd()) {
        m_host.runOwner();
        if (g_isStopped.exchange(false))
            m_isSuspendWanted = true;
        static_cast<void>(m_clientDone.waitFor(kIdleSeconds));
    }
    m_endSignal = g_endSignal;
    return endClient(error);
}

void CMonitorRun::watchTerminal()
{
    qrb::platform::CMessageLoop loop;
    CClientTree tree;
    CTerminal terminal;
    if (!tree.build(m_host.instance().root(), loop, m_options.fps, m_clientError) || !terminal.enter(m_clientError))
        return;
    CMonitor monitor(tree);
    CScreen screen;
    bool isPictureDue = true;
    if (loop.startTimer(1.0 / m_options.fps, [&isPictureDue] { isPictureDue = true; }) == 0) {
        m_clientError = std::string("no timer for the pictures: ") + std::strerror(errno);
        return;
    }
    std::string keys;
    for (int frame = 1; !m_isEnding && terminal.waitForKeys(loop.fileDescriptor(), kKeySeconds, keys);) {
        bool isSuspending = m_isSuspendWanted.exchange(false);
        for (const char key : keys) {
            if (key == CTerminal::kSuspendKey)
                isSuspending = true;
            else if (key == CTerminal::kBreakKey || !monitor.press(key))
                return;
        }
        if (isSuspending) {
            terminal.suspend();
            screen = CScreen();
        }
        runDue(loop);
        if (!isPictureDue && keys.empty())
            continue;
        isPictureDue = false;
        const CTerminal::CSize size = terminal.size();
        if (!terminal.write(screen.paint(picture(monitor, frame++), size.columns, size.rows)))
            return;
    }
}

CPicture CMonitorRun::picture(const CMonitor& monitor, int frame) const
{
    CPicture picture = monitor.picture();
    picture.title = printable(m_options.inFile.substr(m_options.inFile.find_last_of('/') + 1));
    picture.frame = frame;
    picture.seconds = static_cast<double>(m_player.position()) / m_host.sampleRate();
    return picture;
}

} // namespace monitor
