// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/DocCompiler/DocCompiler.h"

namespace qrbdoc {

std::string Diagnostic::text() const
{
    std::string out = file;
    if (line != 0)
        out += ":" + std::to_string(line) + ":" + std::to_string(column);
    return out + ": " + message;
}

std::string Result::errorText() const
{
    std::string out;
    for (const Diagnostic& error : errors)
        out += error.text() + "\n";
    return out;
}

} // namespace qrbdoc
