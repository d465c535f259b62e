// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qrbdoc {

/// Writes a file through a temporary name beside it, so that a reader sees the old content or the new one, never a
/// part. Returns what is wrong, empty on success.
[[nodiscard]] std::string writeFileWhole(const std::string& path, std::string_view content);

/// The rule "target: dependencies" in the syntax of make, which ninja reads.
[[nodiscard]] std::string dependencyRule(const std::string& target, const std::vector<std::string>& dependencies);

} // namespace qrbdoc
