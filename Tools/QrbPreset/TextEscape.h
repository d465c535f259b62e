// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qrbpreset {

/// Bytes as a text of characters that XML carries: "\" is written double, and a byte that is no part of such a character
/// as "\x" and two hexadecimal digits. With `alsoQuotes` the double quote gets a "\" too.
[[nodiscard]] std::string escaped(std::string_view bytes, bool alsoQuotes = false);
/// The other way round; also knows \", \n and \t. Nothing if something else follows a "\".
[[nodiscard]] std::optional<std::string> unescaped(std::string_view text);

/// Text for the content of an element.
[[nodiscard]] std::string xmlText(std::string_view text);
/// Name, "=" and text in quotes, with a blank in front.
[[nodiscard]] std::string xmlAttribute(std::string_view name, std::string_view text);

[[nodiscard]] std::string hexText(std::string_view bytes);
/// Blanks and line ends between digits are skipped. Nothing if there is anything else, or half a byte.
[[nodiscard]] std::optional<std::string> bytesOfHex(std::string_view text);

/// Without blanks, tabs and line ends at both ends.
[[nodiscard]] std::string_view trimmed(std::string_view text);

} // namespace qrbpreset
