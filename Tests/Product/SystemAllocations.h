// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// Whether calls of the system's allocator are counted in this build; the sanitizers bring an allocator of their own.
[[nodiscard]] bool countsSystemAllocations();

/// Calls of malloc and its relatives by this thread so far.
[[nodiscard]] std::uint64_t systemAllocations();
