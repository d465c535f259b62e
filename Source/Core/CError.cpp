// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CError.h"

#include "Core/CErrorReporter.h"
#include "Core/CLog.h"
#include "Core/CNumberText.h"

#include <algorithm>
#include <string_view>

namespace qrb {

namespace {

/// What is left of a message behind its key; a message without a blank has no key, even with "@" in front.
std::string_view withoutKey(std::string_view message) noexcept
{
    const std::size_t blank = message.find(' ');
    const bool hasKey = message.starts_with('@') && blank != std::string_view::npos;
    return hasKey ? message.substr(blank + 1) : message;
}

/// Path below the source root without extension. What stands before it depends on how the compiler was called.
std::string_view shownPath(std::string_view file) noexcept
{
    constexpr std::string_view kRoot = "Source/";
    for (std::size_t pos = file.rfind(kRoot); pos != std::string_view::npos && pos < file.size();) {
        if (pos == 0 || file[pos - 1] == '/') {
            file.remove_prefix(pos + kRoot.size());
            break;
        }
        pos = file.rfind(kRoot, pos - 1);
    }
    while (file.starts_with("../")) {
        file.remove_prefix(3);
    }
    const std::size_t dot = file.rfind('.');
    const bool hasExtension = dot != std::string_view::npos && file.find('/', dot) == std::string_view::npos;
    return hasExtension ? file.substr(0, dot) : file;
}

} // namespace

CString CError::text() const
{
    CString joined;
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        joined += i == 0 ? "" : "\r\n";
        joined += m_lines[i];
    }
    return joined;
}

void CError::addLine(CString line)
{
    m_lines.append(std::move(line));
}

void CError::addTrace(const char* sourceFile, int sourceLine, const CString& objectName)
{
    CString line(shownPath(sourceFile));
    line += "( ";
    line += formatInteger(sourceLine);
    line += " )";
    if (!objectName.empty()) {
        line += " // ";
        line += objectName;
    }
    addLine(std::move(line));
}

CString expandMessage(const char* message, std::initializer_list<CMessageArg> args)
{
    const std::string_view text = withoutKey(message);
    CString expanded;
    for (std::size_t pos = 0; pos < text.size();) {
        const std::size_t percent = std::min(text.find('%', pos), text.size());
        expanded += CString::fromUtf8(text.substr(pos, percent - pos));
        if (percent + 1 >= text.size()) {
            break;
        }
        const char what = text[percent + 1];
        const auto index = static_cast<std::size_t>(what - '1');
        if (what == '%') {
            expanded.append(u'%');
        } else if (what >= '1' && what <= '9' && index < args.size()) {
            expanded += args.begin()[index].text();
        }
        pos = percent + 2;
    }
    return expanded;
}

CErrorPtr makeError(CErrorPtr previous, const char* sourceFile, int sourceLine, const CString& objectName,
                    const char* message, std::initializer_list<CMessageArg> args)
{
    CErrorPtr error = previous ? std::move(previous) : CErrorPtr(new CError);
    if (message != nullptr && *message != 0) {
        error->addLine(expandMessage(message, args));
    }
    error->addTrace(sourceFile, sourceLine, objectName);
    return error;
}

void logError(const CErrorPtr& error)
{
    for (std::size_t i = 0; error && i < error->lineCount(); ++i) {
        logLine(error->line(i));
    }
}

void reportError(CErrorPtr error)
{
    logError(error);
    const CString details = error ? error->text() : CString("<no details>");
    if (CErrorReporter* reporter = CErrorReporter::current()) {
        reporter->showError(details);
    } else {
        CErrorReporter::writeToStandardError(details);
    }
}

} // namespace qrb
