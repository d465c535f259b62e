// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CString.h"

#include <functional>
#include <memory>

namespace qrb {

/// Where informational lines go. A log is the process's log while it lives; the last made wins and logs go in reverse order.
/// With neither sink nor file, which is how a log starts, lines are dropped. Thread: any, but setters before lines come.
class CLog : public CCheckedObject {
public:
    using FSink = std::function<void(const CString& line)>;

    CLog();
    CLog(const CLog&) = delete;
    CLog& operator=(const CLog&) = delete;
    ~CLog() override;

    /// Gets each line, under the log's lock; it must not log. Empty for none.
    void setSink(FSink sink);
    /// File that gets each line with CR LF, begun anew by the first line and appended to afterwards; empty for none.
    void setFileName(const CString& name);
    /// Turns a line into "line // tag"; empty for none.
    void setTag(const CString& tag);
    void write(const CString& line);

    /// The log in charge, or null.
    [[nodiscard]] static CLog* current() noexcept;

private:
    struct CState;
    std::unique_ptr<CState> m_state;
    CLog* m_before;
};

/// Writes one line to the log in charge. Thread: any but the audio thread.
void logLine(const CString& text);
/// Formats a line like printf, UTF-8, at most 1023 bytes, with "." as decimal point whatever the locale.
[[gnu::format(printf, 1, 2)]] void logFormat(const char* format, ...);

} // namespace qrb
