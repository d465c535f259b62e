// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

namespace render {

// What is written for a host parameter, read in the same way whoever plays.

/// Place of a name among those that users see: as it stands, else in whatever case.
[[nodiscard]] std::optional<std::size_t> findName(std::span<const std::string> names, const std::string& name);

/// Whether a text is meant as "@0.25": the normalised value itself, from 0 to 1.
[[nodiscard]] inline bool isNormalised(const std::string& text)
{
    return !text.empty() && text[0] == '@';
}
[[nodiscard]] std::optional<double> parseNormalised(const std::string& text);

/// Normalised value of one of `count` programs, and the program that such a value means.
[[nodiscard]] double programToNormal(std::size_t index, std::size_t count);
[[nodiscard]] std::size_t programOfNormal(double value, std::size_t count);
/// The same of a text, either a program's name or a normalised value.
[[nodiscard]] std::optional<double> parseProgram(std::span<const std::string> names, const std::string& text);

/// Whether a text that a module has taken for its default means it: modules give that for all they cannot read.
/// `shown`: how the module shows the default.
[[nodiscard]] bool meansDefault(const std::string& text, const std::string& shown);

} // namespace render
