// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CString.h"

namespace qrb {

/// Shows errors that nobody handled. Being alive makes a reporter the one that reportError() calls; the last made wins and
/// reporters go in reverse order. Without any the text goes to standard error.
class CErrorReporter {
public:
    /// Title and lead text that every reporter shows.
    static constexpr const char* kTitle = "Quorbel Application Message";
    static constexpr const char* kLead = "An issue has happened when executing Quorbel application.";

    CErrorReporter() noexcept;
    CErrorReporter(const CErrorReporter&) = delete;
    CErrorReporter& operator=(const CErrorReporter&) = delete;
    virtual ~CErrorReporter();

    /// Shows the lines of an error, joined with CR LF, without waiting for anybody. Thread: any but the audio thread.
    virtual void showError(const CString& details) = 0;

    /// The reporter in charge, or null.
    [[nodiscard]] static CErrorReporter* current() noexcept;
    /// What happens without a reporter: title, lead and details to standard error; what does not fit at once is dropped.
    static void writeToStandardError(const CString& details);

private:
    CErrorReporter* m_before;
};

} // namespace qrb
