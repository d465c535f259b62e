// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <juce_core/juce_core.h>

/// Prints what is seen and counts what holds. What the host library complains of while a check runs fails it too.
class CReport final : public juce::Logger {
public:
    CReport() { setCurrentLogger(this); }
    ~CReport() override { setCurrentLogger(nullptr); }

    static void title(const juce::String& text);
    static void note(const juce::String& text);
    bool check(bool isHeld, const juce::String& text);
    /// Prints the sum. The exit code of the program.
    [[nodiscard]] int finish();

    void logMessage(const juce::String& message) override; ///< Thread: any.

private:
    juce::CriticalSection m_lock;
    juce::StringArray m_complaints;
    int m_passed = 0;
    int m_failed = 0;
};

/// Milliseconds since it was made.
class CStopwatch {
public:
    [[nodiscard]] double elapsed() const
    {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - m_begin).count();
    }

private:
    std::chrono::steady_clock::time_point m_begin = std::chrono::steady_clock::now();
};
