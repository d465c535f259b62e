// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CCheckedObject.h"
#include "Core/CMessageArg.h"
#include "Core/CString.h"

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <utility>

namespace qrb {

/// A failure on its way up: the messages, then one trace line for each function it passed through.
class CError : public CCheckedObject {
public:
    [[nodiscard]] std::size_t lineCount() const noexcept { return m_lines.size(); }
    [[nodiscard]] const CString& line(std::size_t index) const noexcept { return m_lines[index]; }
    /// All lines joined with CR LF.
    [[nodiscard]] CString text() const;

    void addLine(CString line);
    /// Adds "file( line ) // object"; `sourceFile` is a path below the source root, its extension is left out.
    void addTrace(const char* sourceFile, int sourceLine, const CString& objectName);

private:
    CArray<CString, 4> m_lines;
};

/// Owns the error of a call that failed; null means success.
class [[nodiscard]] CErrorPtr {
public:
    CErrorPtr(std::nullptr_t = nullptr) noexcept {}
    explicit CErrorPtr(CError* error) noexcept : m_error(error) {}

    [[nodiscard]] explicit operator bool() const noexcept { return m_error != nullptr; }
    [[nodiscard]] CError* operator->() const noexcept { return m_error.get(); }
    [[nodiscard]] CError& operator*() const noexcept { return *m_error; }
    [[nodiscard]] CError* get() const noexcept { return m_error.get(); }

    /// The same error, which is not null, with one trace line more.
    CErrorPtr&& traced(const char* sourceFile, int sourceLine, const CString& objectName) &&
    {
        m_error->addTrace(sourceFile, sourceLine, objectName);
        return std::move(*this);
    }

private:
    std::unique_ptr<CError> m_error;
};

/// Adds to `previous`, or to a new error when that is null: the message unless it is empty, then the trace line.
/// A message is "@qrbstr_Key Text with %1": the key up to the first blank is not shown, %1 to %9 are filled from `args`.
CErrorPtr makeError(CErrorPtr previous, const char* sourceFile, int sourceLine, const CString& objectName,
                    const char* message, std::initializer_list<CMessageArg> args = {});

/// The text of a message without its key, "%1" to "%9" replaced by the arguments and "%%" by "%".
[[nodiscard]] CString expandMessage(const char* message, std::initializer_list<CMessageArg> args = {});

/// Logs the error and hands its text to the error reporter ("<no details>" for null). Thread: any but the audio thread.
void reportError(CErrorPtr error);
/// Writes all lines to the log; null does nothing.
void logError(const CErrorPtr& error);

/// Stands for the object's name in free functions and plain classes, which have none; classes with a name hide it.
[[nodiscard]] inline CString fullName()
{
    return {};
}

} // namespace qrb

/// Calls a fallible function and passes its failure on with a trace line of this place.
#define QRB_TRY(call)                                                                                                  \
    do {                                                                                                               \
        if (::qrb::CErrorPtr error_ = (call)) [[unlikely]]                                                             \
            return std::move(error_).traced(__FILE__, __LINE__, fullName());                                           \
    } while (false)

/// A new error with a message, its arguments and a trace line of this place.
#define QRB_ERROR(message, ...)                                                                                        \
    ::qrb::makeError(nullptr, __FILE__, __LINE__, fullName(), message __VA_OPT__(, {__VA_ARGS__}))
