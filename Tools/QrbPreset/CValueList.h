// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qrbpreset {

/// One entry of a list of values.
struct CEntry {
    std::string text; ///< as bytes, quotes and their escapes gone
    bool isQuoted = false;
    std::optional<std::string> exact; ///< what stands behind "="

    /// Stands for the default: "*" without quotes.
    [[nodiscard]] bool isDefault() const { return !isQuoted && !exact && text == "*"; }
};

/// What the entries of a list hold, which tells the characters that separate.
enum class EListKind {
    numbers,    ///< "," between elements; "=" in front of an exact number
    components, ///< the same, and "|" between the components of an element
    items       ///< "," between elements
};

/// Entries of each element. A list of blanks has none. False with the reason in `error`.
[[nodiscard]] bool splitValues(std::string_view text, EListKind kind, std::vector<std::vector<CEntry>>& out,
                               std::string& error);

/// `text` in quotes, so that all of it is one entry.
[[nodiscard]] std::string quoted(std::string_view text);

} // namespace qrbpreset
