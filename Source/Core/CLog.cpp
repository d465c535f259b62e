// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CLog.h"

#include "Core/CNumberPattern.h"
#include "Core/CPathText.h"
#include "Platform/CRecursiveLock.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <string>
#include <utility>

namespace qrb {

namespace {

constinit std::atomic<CLog*> g_current{nullptr};

std::uint64_t nextInteger(std::va_list& args, const CNumberPattern& pattern, bool& isNegative)
{
    const bool isSigned = pattern.conversion == 'd' || pattern.conversion == 'i';
    // Everything below 64 bits arrives as 32 of them; "l" and above is 64 bits wide here.
    const bool isLong = pattern.longCount > 0;
    if (!isSigned) {
        return isLong ? va_arg(args, std::uint64_t) : va_arg(args, unsigned);
    }
    const std::int64_t value = isLong ? va_arg(args, std::int64_t) : va_arg(args, int);
    isNegative = value < 0;
    return isNegative ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
}

void putConversion(CBoundedText& text, CNumberPattern& pattern, std::va_list& args)
{
    if (pattern.isWidthArg) {
        pattern.width = va_arg(args, int);
        pattern.isLeft |= pattern.width < 0;
        pattern.width = pattern.width < 0 ? -pattern.width : pattern.width;
    }
    if (pattern.isPrecisionArg) {
        pattern.precision = va_arg(args, int);
    }
    if (pattern.conversion == '%') {
        text.put('%');
    } else if (pattern.isFloat()) {
        text.putFloat(pattern, va_arg(args, double));
    } else if (pattern.isInteger()) {
        bool isNegative = false;
        const std::uint64_t magnitude = nextInteger(args, pattern, isNegative);
        text.putInteger(pattern, magnitude, isNegative);
    } else if (pattern.conversion == 's') {
        const char* argument = va_arg(args, const char*);
        text.putText(pattern, argument != nullptr ? argument : "(null)");
    } else if (pattern.conversion == 'c') {
        const char character[] = {static_cast<char>(va_arg(args, int)), 0};
        text.putText(pattern, character);
    } else if (pattern.conversion == 'p') {
        CNumberPattern hex;
        hex.conversion = 'x';
        hex.isAlternate = true;
        text.putInteger(hex, reinterpret_cast<std::uintptr_t>(va_arg(args, void*)), false);
    }
}

} // namespace

struct CLog::CState : public CCheckedObject {
    platform::CRecursiveLock lock{50};
    FSink sink;
    CString fileName;
    CString tag;
    bool isBegun = false;

    void writeToFile(const CString& line)
    {
        std::FILE* file = std::fopen(pathToBytes(fileName).c_str(), isBegun ? "abe" : "wbe");
        if (file == nullptr) {
            return; // a log that cannot be written must not stop anything
        }
        isBegun = true;
        const std::string bytes = line.toUtf8() + "\r\n";
        static_cast<void>(std::fwrite(bytes.data(), 1, bytes.size(), file));
        std::fclose(file);
    }
};

CLog::CLog() : m_state(new CState), m_before(g_current.exchange(this)) {}

CLog::~CLog()
{
    g_current.store(m_before);
}

CLog* CLog::current() noexcept
{
    return g_current.load();
}

void CLog::setSink(FSink sink)
{
    const platform::CScopedLock guard(m_state->lock);
    m_state->sink = std::move(sink);
}

void CLog::setFileName(const CString& name)
{
    const platform::CScopedLock guard(m_state->lock);
    m_state->fileName = name;
}

void CLog::setTag(const CString& tag)
{
    const platform::CScopedLock guard(m_state->lock);
    m_state->tag = tag;
}

void CLog::write(const CString& line)
{
    const platform::CScopedLock guard(m_state->lock);
    const CString tagged = m_state->tag.empty() ? line : line + " // " + m_state->tag;
    if (m_state->sink) {
        m_state->sink(tagged);
    }
    if (!m_state->fileName.empty()) {
        m_state->writeToFile(tagged);
    }
}

void logLine(const CString& text)
{
    if (CLog* log = CLog::current()) {
        log->write(text);
    }
}

void logFormat(const char* format, ...)
{
    char room[1023];
    CBoundedText text(room);
    std::va_list args;
    va_start(args, format);
    for (const char* at = format; *at != 0;) {
        const char c = *at++;
        if (c != '%') {
            text.put(c);
            continue;
        }
        CNumberPattern pattern = CNumberPattern::parse(at);
        putConversion(text, pattern, args);
    }
    va_end(args);
    logLine(CString::fromUtf8(text.view()));
}

} // namespace qrb
