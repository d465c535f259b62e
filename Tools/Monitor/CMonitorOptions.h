// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/Render/CHostOptions.h"

#include <optional>
#include <string>
#include <vector>

namespace monitor {

/// The command line, checked word by word but not yet against the product's parameters.
struct CMonitorOptions : render::CHostOptions {
    bool isHelpWanted = false;
    std::optional<int> frames; ///< plain lines of so many frames instead of a terminal's screen
    std::string keys;          ///< handed in one a frame
    double fps = 20.0;
    bool isPlayedOnce = false;
};

/// Reads the command line (without the program's name). Returns the options, or nothing with one line in `error`.
[[nodiscard]] std::optional<CMonitorOptions> parseOptions(const std::vector<std::string>& words, std::string& error);

/// Text of --help.
[[nodiscard]] std::string helpText();

} // namespace monitor
