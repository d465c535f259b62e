// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace monitor {

struct CPicture;

/// A picture as lines for machines and for those who keep a log: one thing a line, its kind in front.
[[nodiscard]] std::string plainLines(const CPicture& picture);

} // namespace monitor
