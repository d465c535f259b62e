// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/HostText.h"

#include "Tools/Render/CArgReader.h"

#include <algorithm>
#include <strings.h>

namespace render {

namespace {

bool isSameInAnyCase(const std::string& a, const std::string& b)
{
    return strcasecmp(a.c_str(), b.c_str()) == 0;
}

/// The number that a text begins with.
std::optional<double> leadingNumber(const std::string& text)
{
    double number = 0.0;
    if (std::from_chars(text.data(), text.data() + text.size(), number).ec != std::errc())
        return std::nullopt;
    return number;
}

} // namespace

std::optional<std::size_t> findName(std::span<const std::string> names, const std::string& name)
{
    auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end())
        found =
            std::find_if(names.begin(), names.end(), [&](const auto& other) { return isSameInAnyCase(other, name); });
    if (found == names.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - names.begin());
}

std::optional<double> parseNormalised(const std::string& text)
{
    double value = 0.0;
    const bool isRead = isNormalised(text) && parseWhole(text.substr(1), value) && value >= 0.0 && value <= 1.0;
    return isRead ? std::optional(value) : std::nullopt;
}

double programToNormal(std::size_t index, std::size_t count)
{
    return count > 1 ? static_cast<double>(index) / static_cast<double>(count - 1) : 0.0;
}

std::size_t programOfNormal(double value, std::size_t count)
{
    return count > 1 ? static_cast<std::size_t>(value * static_cast<double>(count - 1) + 0.5) : 0;
}

std::optional<double> parseProgram(std::span<const std::string> names, const std::string& text)
{
    if (const std::optional<std::size_t> index = findName(names, text))
        return programToNormal(*index, names.size());
    return parseNormalised(text);
}

bool meansDefault(const std::string& text, const std::string& shown)
{
    if (isSameInAnyCase(text, shown))
        return true;
    const std::optional<double> number = leadingNumber(text);
    const std::optional<double> shownNumber = leadingNumber(shown);
    double whole = 0.0;
    return number && shownNumber && (*number == *shownNumber || parseWhole(text, whole)); // beyond a range's end
}

} // namespace render
