// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CHostOptions.h"

#include <cmath>

namespace render {

namespace {

/// Takes ":NUMBER" off the end of `path` if it is there. False if something else stands behind a colon.
bool splitIndices(std::string& path, CSetting& setting)
{
    const std::size_t first = path.find(':');
    if (first == std::string::npos)
        return true;
    const std::string indices = path.substr(first + 1);
    path.resize(first);
    const std::size_t second = indices.find(':');
    const std::string group = indices.substr(0, second);
    if (!parseWhole(group, setting.group) || setting.group < 0)
        return false;
    if (second == std::string::npos)
        return true;
    return parseWhole(indices.substr(second + 1), setting.element) && setting.element >= 0;
}

bool takeSetting(CArgReader& args, const std::string& option, std::vector<CSetting>& out, double seconds,
                 std::string& error)
{
    std::string text;
    if (!args.takeValue(option, text))
        return false;
    std::optional<CSetting> setting = parseSetting(text, error);
    if (!setting)
        return false;
    setting->seconds = seconds;
    out.push_back(std::move(*setting));
    return true;
}

bool takeEvent(CArgReader& args, const std::string& option, std::vector<CSetting>& out, std::string& error)
{
    std::string time;
    double seconds = 0.0;
    if (!args.takeValue(option, time))
        return false;
    if (!parseWhole(time, seconds) || !std::isfinite(seconds) || seconds < 0.0) {
        error = "'" + time + "' is no time in seconds (option '" + option + "')";
        return false;
    }
    return takeSetting(args, option, out, seconds, error);
}

} // namespace

std::optional<CSetting> parseSetting(const std::string& text, std::string& error)
{
    const std::size_t equals = text.find('=');
    CSetting setting;
    if (equals != std::string::npos) {
        setting.path = text.substr(0, equals);
        setting.text = text.substr(equals + 1);
    }
    if (equals == std::string::npos || !splitIndices(setting.path, setting) || setting.path.empty()) {
        error = "'" + text + "' is not of the form PATH[:GROUP[:ELEMENT]]=TEXT";
        return std::nullopt;
    }
    return setting;
}

EOption takeHostOption(const std::string& option, CArgReader& args, CHostOptions& out, std::string& error)
{
    if (option == "--set")
        return takenIf(takeSetting(args, option, out.sets, 0.0, error));
    if (option == "--at")
        return takenIf(takeEvent(args, option, out.events, error));
    if (option == "--sidechain")
        return takenIf(args.takeFile(option, out.sidechainFile));
    if (option == "--preset")
        return takenIf(args.takeValue(option, out.presetName.emplace()));
    if (option == "--bank")
        return takenIf(args.takeFile(option, out.bankFile));
    if (option == "--preset-file")
        return takenIf(args.takeFile(option, out.presetFiles.emplace_back()));
    if (option == "--state")
        return takenIf(args.takeFile(option, out.stateFile));
    if (option == "--block")
        return takenIf(
            args.takeNumber<std::size_t>(option, 1, kMaxBlockSize, "block size from 1 to 1048576", out.blockSize));
    if (option == "--rate")
        return takenIf(args.takeNumber(option, 1000.0, 1e6, "sample rate from 1000 to 1000000 Hz", out.sampleRate));
    if (option != "--double")
        return EOption::unknown;
    out.useDouble = true;
    return EOption::taken;
}

} // namespace render
