// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Hosts/Juce/CReport.h"

#include <iostream>

void CReport::title(const juce::String& text)
{
    std::cout << "\n" << text << "\n";
}

void CReport::note(const juce::String& text)
{
    std::cout << "  " << text << "\n";
}

bool CReport::check(bool isHeld, const juce::String& text)
{
    juce::StringArray complaints;
    {
        const juce::ScopedLock guard(m_lock);
        complaints.swapWith(m_complaints);
    }
    const bool isPassed = isHeld && complaints.isEmpty();
    ++(isPassed ? m_passed : m_failed);
    std::cout << (isPassed ? "  ok      " : "  FAILED  ") << text << std::endl;
    for (const juce::String& complaint : complaints)
        std::cout << "          " << complaint << "\n";
    return isPassed;
}

int CReport::finish()
{
    check(true, "nothing else to complain of");
    std::cout << "\n" << m_passed << " passed, " << m_failed << " failed" << std::endl;
    return m_failed == 0 ? 0 : 1;
}

void CReport::logMessage(const juce::String& message)
{
    const juce::ScopedLock guard(m_lock);
    m_complaints.addIfNotAlreadyThere(message);
}
