// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/Render/CHostOptions.h"

#include <optional>
#include <string>
#include <vector>

namespace render {

/// Sample format of the output file.
enum class EFileFormat { float32, float64, pcm16, pcm24 };

/// What the tool is asked to do.
enum class ETask { render, list, latency, presets, save, help };

/// The command line, checked word by word but not yet against the product's parameters.
struct CRenderOptions : CHostOptions {
    ETask task = ETask::render;
    std::string outFile;
    std::string moduleFile; ///< plug-in module that is hosted, in place of the engine that is linked in
    std::string savePresetFile;
    std::string saveStateFile;
    EFileFormat format = EFileFormat::float32;
    bool isRaw = false; ///< keep the latency in the output
    bool isJson = false;
};

/// Reads the command line (without the program's name). Returns the options, or nothing with one line in `error`.
[[nodiscard]] std::optional<CRenderOptions> parseOptions(const std::vector<std::string>& args, std::string& error);

/// Text of --help.
[[nodiscard]] const char* helpText();

} // namespace render
