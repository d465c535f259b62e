// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tests/Hosts/Juce/CReport.h"

#include <juce_audio_processors/juce_audio_processors.h>

/// What all checks work with.
struct CBench {
    CReport& report;
    juce::AudioPluginFormatManager& formats;
    juce::PluginDescription plugin; ///< as the scan found it
    bool isShort = false;           ///< fewer rounds, for slow ways to run it
};

/// Fills in the description. False where nothing can be checked further.
[[nodiscard]] bool checkScan(CBench& bench, const juce::String& bundle);
void checkParameters(CBench& bench);
void checkPrograms(CBench& bench);
void checkLayouts(CBench& bench);
void checkLatency(CBench& bench);
void checkAutomation(CBench& bench);
void checkState(CBench& bench);
void checkThreads(CBench& bench);
void checkComingAndGoing(CBench& bench);
