// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace render {

/// One parameter value as told on the command line: `PATH[:GROUP[:ELEMENT]]=TEXT`, PATH below plugin.modMain.
struct CSetting {
    std::string path;
    int group = 0;
    int element = 0;
    std::string text;
    double seconds = 0.0; ///< when it takes effect; settings of --set hold before the first sample
};

/// Sample format of the output file.
enum class EFileFormat { float32, float64, pcm16, pcm24 };

/// What the tool is asked to do.
enum class ETask { render, list, latency, presets, save, help };

/// The command line, checked word by word but not yet against the product's parameters.
struct CRenderOptions {
    ETask task = ETask::render;
    std::string inFile;
    std::string outFile;
    std::string sidechainFile;
    std::optional<std::string> presetName; ///< of the built-in bank, or of the bank's file
    std::string bankFile;
    std::vector<std::string> presetFiles; ///< in the order given
    std::string savePresetFile;
    std::vector<CSetting> sets;   ///< in the order given
    std::vector<CSetting> events; ///< in the order given
    std::size_t blockSize = 512;  ///< samples the host hands over at a time
    double sampleRate = 44100.0;  ///< used by --latency and --list when no file tells one
    bool useDouble = false;       ///< host buffers of 64-bit floats
    EFileFormat format = EFileFormat::float32;
    bool isRaw = false; ///< keep the latency in the output
    bool isJson = false;
};

/// Largest block a host is imitated with, samples.
inline constexpr std::size_t kMaxBlockSize = 1u << 20;

/// Reads the command line (without the program's name). Returns the options, or nothing with one line in `error`.
[[nodiscard]] std::optional<CRenderOptions> parseOptions(const std::vector<std::string>& args, std::string& error);

/// Reads `PATH[:GROUP[:ELEMENT]]=TEXT`. Returns nothing with one line in `error` if it has another shape.
[[nodiscard]] std::optional<CSetting> parseSetting(const std::string& text, std::string& error);

/// Text of --help.
[[nodiscard]] const char* helpText();

} // namespace render
