// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/DocCompiler/ToolFiles.h"

#include <filesystem>
#include <fstream>

namespace qrbdoc {

namespace {

std::string escapedForMake(const std::string& path)
{
    std::string out;
    for (const char c : path) {
        if (c == ' ' || c == '#')
            out += '\\';
        if (c == '$')
            out += '$';
        out += c;
    }
    return out;
}

} // namespace

std::string writeFileWhole(const std::string& path, std::string_view content)
{
    const std::string temporary = path + ".tmp";
    std::error_code code;
    if (std::filesystem::exists(path, code) && !std::filesystem::is_regular_file(path, code))
        return "cannot write '" + path + "': it is not a regular file"; // the new file would take its place
    {
        std::ofstream stream(temporary, std::ios::binary | std::ios::trunc);
        stream.write(content.data(), static_cast<std::streamsize>(content.size()));
        stream.close();
        if (!stream) {
            std::filesystem::remove(temporary, code);
            return "cannot write '" + path + "'";
        }
    }
    std::filesystem::rename(temporary, path, code);
    if (!code)
        return {};
    const std::string problem = "cannot write '" + path + "': " + code.message();
    std::filesystem::remove(temporary, code);
    return problem;
}

std::string dependencyRule(const std::string& target, const std::vector<std::string>& dependencies)
{
    std::string out = escapedForMake(target) + ":";
    for (const std::string& dependency : dependencies)
        out += " \\\n  " + escapedForMake(dependency);
    return out + "\n";
}

} // namespace qrbdoc
