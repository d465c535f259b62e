// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <fstream>
#include <unistd.h>

namespace vst3 {

/// Bytes of this process that lie in memory.
[[nodiscard]] inline std::size_t residentBytes()
{
    std::ifstream file("/proc/self/statm");
    std::size_t pages = 0;
    file >> pages >> pages; // all of them, then those
    return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

} // namespace vst3
