// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CResourceStore.h"

#include <span>
#include <string>
#include <vector>

namespace qrbpreset {

/// The whole program, for a command line without the program's name. `linked` are the product's data files, as far as
/// they are there. Returns the exit status: 0 done, 2 something was wrong.
[[nodiscard]] int runTool(const std::vector<std::string>& words, std::span<const qrb::CResourceRow> linked);

} // namespace qrbpreset
