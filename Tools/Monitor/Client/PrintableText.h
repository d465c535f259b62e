// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace monitor {

/// UTF-8 text with a "?" for each control character: no name from anywhere is to command a terminal.
[[nodiscard]] std::string printable(std::string text);

} // namespace monitor
