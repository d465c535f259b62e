// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <string>

namespace product {

/// Reads a file of at most `limit` bytes. Returns what is wrong, empty on success.
[[nodiscard]] std::string readBoundedFile(const std::string& path, std::size_t limit, std::string& out);

} // namespace product
