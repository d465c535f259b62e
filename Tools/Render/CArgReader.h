// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <charconv>
#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace render {

/// Reads all of `text` as a number. False if it is none.
template <class T>
bool parseWhole(const std::string& text, T& out)
{
    const auto [end, status] = std::from_chars(text.data(), text.data() + text.size(), out);
    return status == std::errc() && end == text.data() + text.size() && !text.empty();
}

/// Walks the words; each option takes what it needs from the front.
class CArgReader {
public:
    CArgReader(std::span<const std::string> args, std::string& error) : m_args(args), m_error(error) {}

    [[nodiscard]] bool atEnd() const { return m_next == m_args.size(); }
    const std::string& take() { return m_args[m_next++]; }

    /// The next word as the value of `option`; false with an error if there is none.
    bool takeValue(const std::string& option, std::string& out)
    {
        if (atEnd()) {
            m_error = "option '" + option + "' needs a value";
            return false;
        }
        out = take();
        return true;
    }

    /// The same for the path of a file, which an option before it has not told yet.
    bool takeFile(const std::string& option, std::string& out)
    {
        std::string path;
        if (!takeValue(option, path))
            return false;
        if (path.empty() || !out.empty()) {
            m_error = path.empty() ? "option '" + option + "' needs a value" : "option '" + option + "' is given twice";
            return false;
        }
        out = path;
        return true;
    }

    /// The same for a number from `min` to `max`; `what` tells the user which ones those are.
    template <class T>
    bool takeNumber(const std::string& option, T min, T max, const char* what, T& out)
    {
        std::string text;
        if (!takeValue(option, text))
            return false;
        if (parseWhole(text, out) && out >= min && out <= max)
            return true;
        m_error = "'" + text + "' is no " + what + " (option '" + option + "')";
        return false;
    }

private:
    std::span<const std::string> m_args;
    std::string& m_error;
    std::size_t m_next = 0;
};

/// What has become of an option; behind the last one nothing is read.
enum class EOption { taken, unknown, failed, last };

[[nodiscard]] inline EOption takenIf(bool isTaken)
{
    return isTaken ? EOption::taken : EOption::failed;
}

/// Takes an option with what belongs to it. Failed with one line in the reader's error.
using COptionTaker = std::function<EOption(const std::string& option, CArgReader& args)>;

/// Reads a command line: what is no option is a file, and so is all behind "--". False with one line in `error`.
[[nodiscard]] bool readCommandLine(const std::vector<std::string>& words, const COptionTaker& take,
                                   std::vector<std::string>& files, std::string& error);

} // namespace render
