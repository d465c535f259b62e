// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CArgReader.h"

namespace render {

bool readCommandLine(const std::vector<std::string>& words, const COptionTaker& take, std::vector<std::string>& files,
                     std::string& error)
{
    CArgReader args(words, error);
    bool areFilesOnly = false;
    while (!args.atEnd()) {
        const std::string& word = args.take();
        if (!areFilesOnly && word == "--") {
            areFilesOnly = true;
            continue;
        }
        if (areFilesOnly || word.size() < 2 || word[0] != '-') {
            files.push_back(word);
            continue;
        }
        const EOption taken = take(word, args);
        if (taken == EOption::last)
            return true;
        if (taken == EOption::unknown)
            error = "unknown option '" + word + "'";
        if (taken != EOption::taken)
            return false;
    }
    return true;
}

} // namespace render
