// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tests/Hosts/Juce/CHostedPlugin.h"

/// What one more process of this program plays, in which the module is fresh: the noise that keeps filters from
/// denormal numbers has its seeds from a counter of the process, so only there outputs are the same to the bit.
struct CDigestJob {
    juce::String bundle;
    juce::File state; ///< as a host saved it
    int mainChannels = 2;
    int keyChannels = 0;
    CRun run{};
};

/// Digests of an output and of the same rounded to single precision, as text.
struct CDigest {
    juce::String whole;
    juce::String rounded;
};

/// Runs the job in a new process. Empty texts if that fails.
[[nodiscard]] CDigest digestOf(const CDigestJob& job);
/// The other end: plays what the arguments behind the program's own ask for and prints the digests. The exit code.
int printDigest(const juce::StringArray& arguments);
