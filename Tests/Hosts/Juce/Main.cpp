// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Hosts/Juce/Checks.h"
#include "Tests/Hosts/Juce/Digest.h"

#include <cstring>
#include <iostream>

int main(int argc, char** argv)
{
    const juce::ScopedJuceInitialiser_GUI library;
    if (argc > 8 && std::strcmp(argv[1], "--digest") == 0)
        return printDigest(juce::StringArray(argv + 2, argc - 2));
    const bool isShort = argc == 3 && std::strcmp(argv[1], "--short") == 0;
    if (argc != 2 && !isShort) {
        std::cerr << "juce_host [--short] BUNDLE\n";
        return 2;
    }
    CReport report;
    juce::AudioPluginFormatManager formats;
    formats.addFormat(new juce::VST3PluginFormat);
    CBench bench{report, formats, {}, isShort};
    const juce::File bundle = juce::File::getCurrentWorkingDirectory().getChildFile(argv[argc - 1]);
    if (checkScan(bench, bundle.getFullPathName())) {
        for (const auto& checkAll : {checkParameters, checkPrograms, checkLayouts, checkLatency, checkAutomation,
                                     checkState, checkThreads, checkComingAndGoing})
            checkAll(bench);
    }
    return report.finish();
}
