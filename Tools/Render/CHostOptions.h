// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/Render/CArgReader.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace render {

/// One parameter value as told on the command line: `PATH[:GROUP[:ELEMENT]]=TEXT`, PATH below plugin.modMain or the name
/// that hosts show.
struct CSetting {
    std::string path;
    int group = 0;
    int element = 0;
    std::string text;
    double seconds = 0.0; ///< when it takes effect; settings of --set hold before the first sample
};

/// What a tool's host is asked to play and how it sets its instance.
struct CHostOptions {
    std::string inFile;
    std::string sidechainFile;
    std::optional<std::string> presetName; ///< of the built-in bank, or of the bank's file
    std::string bankFile;
    std::string stateFile;                ///< a host's, in force before all presets
    std::vector<std::string> presetFiles; ///< in the order given
    std::vector<CSetting> sets;           ///< in the order given
    std::vector<CSetting> events;         ///< in the order given
    std::size_t blockSize = 512;          ///< samples the host hands over at a time
    double sampleRate = 44100.0;          ///< used where no file tells one
    bool useDouble = false;               ///< host buffers of 64-bit floats
};

/// Largest block a host is imitated with, samples.
inline constexpr std::size_t kMaxBlockSize = 1u << 20;

/// Reads `PATH[:GROUP[:ELEMENT]]=TEXT`. Returns nothing with one line in `error` if it has another shape.
[[nodiscard]] std::optional<CSetting> parseSetting(const std::string& text, std::string& error);

/// Takes an option that is the host's, with its value. Failed with one line in `error`.
[[nodiscard]] EOption takeHostOption(const std::string& option, CArgReader& args, CHostOptions& out,
                                     std::string& error);

} // namespace render
