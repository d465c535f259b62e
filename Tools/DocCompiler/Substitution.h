// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace qrbdoc {

/// Gives a variable's text; null if there is none of that name.
using VariableLookup = std::function<const std::string*(std::string_view name)>;

/// Replaces every `$(...)` of `text` into `out`, and `$$` by "$". Returns what is wrong, empty on success.
[[nodiscard]] std::string substitute(std::string_view text, const VariableLookup& lookup, std::string& out);

/// Writes `text` so that `substitute` gives it back.
[[nodiscard]] std::string escapeSubstitution(std::string_view text);

} // namespace qrbdoc
