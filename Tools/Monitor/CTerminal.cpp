// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Monitor/CTerminal.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <iterator>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace monitor {

namespace {

// Another screen than the one with the history of commands, without cursor; and back.
constexpr char kEnter[] = "\x1b[?1049h\x1b[?25l\x1b[2J";
constexpr char kLeave[] = "\x1b[0m\x1b[?25h\x1b[?1049l";

constexpr int kFaults[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

// For the handler of faults, which has no other way to them.
termios g_before;
std::atomic<bool> g_isChanged{false};
struct sigaction g_handlers[std::size(kFaults)];

/// Safe within a signal handler.
void restore()
{
    if (!g_isChanged.exchange(false))
        return;
    [[maybe_unused]] const ssize_t written = ::write(STDOUT_FILENO, kLeave, sizeof kLeave - 1);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &g_before);
}

void onFault(int number)
{
    restore();
    for (std::size_t i = 0; i < std::size(kFaults); ++i)
        if (kFaults[i] == number)
            sigaction(number, &g_handlers[i], nullptr);
    raise(number); // to whoever was asked before
}

void watchFaults()
{
    struct sigaction action {};
    action.sa_handler = onFault;
    for (std::size_t i = 0; i < std::size(kFaults); ++i)
        sigaction(kFaults[i], &action, &g_handlers[i]);
}

void forgetFaults()
{
    for (std::size_t i = 0; i < std::size(kFaults); ++i)
        sigaction(kFaults[i], &g_handlers[i], nullptr);
}

/// Arrows come as ESC [ A to D, or ESC O A to D.
char arrowKey(char letter)
{
    switch (letter) {
    case 'A':
        return 'k';
    case 'B':
        return 'j';
    case 'C':
        return '+';
    case 'D':
        return '-';
    default:
        return 0;
    }
}

std::string decodeKeys(const char* bytes, std::size_t count)
{
    std::string keys;
    for (std::size_t i = 0; i < count; ++i) {
        if (bytes[i] != '\x1b') {
            keys += bytes[i];
            continue;
        }
        if (i + 2 >= count || (bytes[i + 1] != '[' && bytes[i + 1] != 'O'))
            continue;
        std::size_t end = i + 2; // sequences end with a letter or "~"
        while (end + 1 < count && static_cast<unsigned char>(bytes[end]) < 0x40)
            ++end;
        if (const char key = arrowKey(bytes[end]); key != 0 && end == i + 2)
            keys += key;
        i = end;
    }
    return keys;
}

} // namespace

bool CTerminal::isThere()
{
    return isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1;
}

bool CTerminal::enter(std::string& error)
{
    termios raw{};
    if (tcgetattr(STDIN_FILENO, &raw) != 0) {
        error = std::string("the terminal cannot be used: ") + std::strerror(errno);
        return false;
    }
    g_before = raw;
    raw.c_iflag &= ~static_cast<tcflag_t>(BRKINT | ICRNL | INPCK | ISTRIP | IXON);
    raw.c_oflag &= ~static_cast<tcflag_t>(OPOST);
    raw.c_lflag &= ~static_cast<tcflag_t>(ECHO | ICANON | IEXTEN | ISIG);
    raw.c_cc[VMIN] = 0;
    raw.c_cc[VTIME] = 0;
    watchFaults();
    g_isChanged = true;
    m_isEntered = true;
    if (tcsetattr(STDIN_FILENO, TCSAFLUSH, &raw) == 0 && write(kEnter))
        return true;
    error = std::string("the terminal cannot be used: ") + std::strerror(errno);
    leave();
    return false;
}

void CTerminal::leave()
{
    if (!m_isEntered)
        return;
    m_isEntered = false;
    restore();
    forgetFaults();
}

void CTerminal::suspend()
{
    leave();
    raise(SIGSTOP); // to this thread, so that nothing behind it is done before
    std::string error;
    static_cast<void>(enter(error)); // a terminal that is gone shows at the next look for keys
}

CTerminal::CSize CTerminal::size() const
{
    winsize window{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) != 0 || window.ws_col == 0 || window.ws_row == 0)
        return {};
    return {window.ws_col, window.ws_row};
}

bool CTerminal::write(const std::string& text)
{
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t count = ::write(STDOUT_FILENO, text.data() + done, text.size() - done);
        if (count < 0 && errno != EINTR && errno != EAGAIN)
            return false;
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return true;
}

bool CTerminal::waitForKeys(int descriptor, double seconds, std::string& keys)
{
    pollfd watched[] = {{STDIN_FILENO, POLLIN, 0}, {descriptor, POLLIN, 0}};
    keys.clear();
    if (::poll(watched, std::size(watched), static_cast<int>(seconds * 1000.0)) <= 0)
        return true; // the time is over, or a signal has come
    char bytes[256];
    if ((watched[0].revents & POLLIN) != 0)
        if (const ssize_t count = ::read(STDIN_FILENO, bytes, sizeof bytes); count > 0) {
            keys = decodeKeys(bytes, static_cast<std::size_t>(count));
            return true;
        }
    return (watched[0].revents & (POLLIN | POLLHUP | POLLERR | POLLNVAL)) == 0;
}

} // namespace monitor
