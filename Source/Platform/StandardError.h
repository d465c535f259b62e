// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace qrb::platform {

/// Writes to standard error as much as fits without waiting for a reader; the rest is dropped. Thread: any.
void writeStandardError(std::string_view text) noexcept;

} // namespace qrb::platform
