// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace monitor {

/// The terminal of this process, as a screen and a keyboard. Whatever way the process ends, faults included, the
/// terminal is then as it was. At most one in a process.
class CTerminal {
public:
    struct CSize {
        int columns = 80;
        int rows = 24;
    };

    CTerminal() = default;
    ~CTerminal() { leave(); }
    CTerminal(const CTerminal&) = delete;
    CTerminal& operator=(const CTerminal&) = delete;

    /// Whether keys come from and pictures go to one.
    [[nodiscard]] static bool isThere();
    /// Takes it over: keys come at once and are not shown, the screen is ours. False with one line in `error`.
    [[nodiscard]] bool enter(std::string& error);
    void leave();
    /// Gives it back, stops the process until somebody continues it, and takes it over again.
    void suspend();

    [[nodiscard]] CSize size() const;
    /// False if nothing can be shown any more.
    [[nodiscard]] bool write(const std::string& text);
    /// Waits for keys, or until `descriptor` can be read, or the time is over, and gives the keys; arrows as the letters
    /// and signs that do the same. False if none can come any more.
    [[nodiscard]] bool waitForKeys(int descriptor, double seconds, std::string& keys);

    static constexpr char kSuspendKey = 26; // Ctrl-Z
    static constexpr char kBreakKey = 3;    // Ctrl-C

private:
    bool m_isEntered = false;
};

} // namespace monitor
