// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Product/BoundedFile.h"

#include <filesystem>
#include <fstream>

namespace product {

std::string readBoundedFile(const std::string& path, std::size_t limit, std::string& out)
{
    constexpr std::size_t kPiece = std::size_t{1} << 16;
    out.clear();
    std::error_code code;
    if (std::filesystem::is_directory(path, code))
        return "cannot read '" + path + "': it is a folder";
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
        return "cannot read '" + path + "'";
    while (stream && out.size() <= limit) {
        const std::size_t before = out.size();
        out.resize(before + kPiece);
        stream.read(out.data() + before, kPiece);
        out.resize(before + static_cast<std::size_t>(stream.gcount()));
    }
    if (stream.bad())
        return "cannot read '" + path + "'";
    return out.size() > limit ? "'" + path + "' is larger than " + std::to_string(limit >> 20) + " MiB" : "";
}

} // namespace product
