// SPDX-License-Identifier: GPL-3.0-or-later
// qrb-pack: makes the table of data files that is linked into a module.
#include "Tools/DocCompiler/ToolFiles.h"
#include "Tools/Packager/CPackager.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <string_view>

namespace {

constexpr int kFailure = 2;

constexpr const char* kHelp =
    "qrb-pack: makes the table of data files that is linked into a module\n"
    "\n"
    "  qrb-pack [options] OUT.S\n"
    "\n"
    "Options, repeatable but for the last three:\n"
    "  --file SOURCE|RESOURCE   one file and its name in the resource store\n"
    "  --list FILE              a text file of such lines, relative to it; lines with # are comments\n"
    "  --document IN.xml        what the document's objects named \"appdata\" ask for, relative to it\n"
    "  --folder FOLDER          where sources are looked for as well\n"
    "  -D NAME=VALUE            a variable of the documents\n"
    "  --name NAME              name of the table's function in the header (default: resources)\n"
    "  --header FILE            write the C++ header for the table\n"
    "  --depfile FILE           write what OUT.S depends on, as a rule for make or ninja\n"
    "  -h, --help               this text\n"
    "\n"
    "A missing file or a name given twice ends it with exit status 2, and nothing is written.\n";

struct Arguments {
    std::vector<std::string> files;
    std::vector<std::string> lists;
    std::vector<std::string> documents;
    std::vector<std::string> folders;
    std::vector<std::string> definitions;
    std::string name = "resources";
    std::string header;
    std::string depfile;
    std::string target;
};

int fail(const std::string& message)
{
    std::fprintf(stderr, "qrb-pack: %s\n", message.c_str());
    return kFailure;
}

std::string parseArguments(int count, char** values, Arguments& out)
{
    const std::map<std::string_view, std::vector<std::string>*> lists = {{"--file", &out.files},
                                                                         {"--list", &out.lists},
                                                                         {"--document", &out.documents},
                                                                         {"--folder", &out.folders},
                                                                         {"-D", &out.definitions}};
    const std::map<std::string_view, std::string*> singles = {
        {"--name", &out.name}, {"--header", &out.header}, {"--depfile", &out.depfile}};
    for (int i = 1; i < count; ++i) {
        const std::string word = values[i];
        const auto list = lists.find(word);
        const auto single = singles.find(word);
        if (list == lists.end() && single == singles.end()) {
            if (word.starts_with('-') || !out.target.empty())
                return "'" + word + "' is not understood; see qrb-pack --help";
            out.target = word;
            continue;
        }
        if (i + 1 == count)
            return "'" + word + "' needs a value";
        if (list != lists.end())
            list->second->push_back(values[++i]);
        else
            *single->second = values[++i];
    }
    if (out.target.empty())
        return "no output file given; see qrb-pack --help";
    for (const std::string& definition : out.definitions)
        if (definition.find('=') == std::string::npos || definition.starts_with('='))
            return "'" + definition + "' is not of the form NAME=VALUE";
    const auto isNamePart = [](unsigned char c) { return std::isalnum(c) != 0 || c == '_'; };
    if (out.name.empty() || !std::all_of(out.name.begin(), out.name.end(), isNamePart))
        return "'" + out.name + "' cannot be the name of a function";
    return {};
}

} // namespace

int main(int count, char** values)
{
    for (int i = 1; i < count; ++i)
        if (std::string_view(values[i]) == "-h" || std::string_view(values[i]) == "--help") {
            std::fputs(kHelp, stdout);
            return 0;
        }
    Arguments arguments;
    if (const std::string problem = parseArguments(count, values, arguments); !problem.empty())
        return fail(problem);
    qrbdoc::Options options;
    for (const std::string& definition : arguments.definitions)
        options.variables[definition.substr(0, definition.find('='))] = definition.substr(definition.find('=') + 1);

    qrbpack::CPackager packager;
    for (const std::string& folder : arguments.folders)
        packager.addFolder(folder);
    for (const std::string& file : arguments.files)
        packager.addFile(file);
    for (const std::string& list : arguments.lists)
        packager.addList(list);
    for (const std::string& document : arguments.documents)
        packager.addDocument(document, options);
    for (const qrbdoc::Diagnostic& error : packager.errors())
        std::fprintf(stderr, "%s\n", error.text().c_str());
    if (!packager.errors().empty())
        return kFailure;

    std::string problem;
    if (!arguments.header.empty())
        problem = qrbdoc::writeFileWhole(arguments.header, qrbpack::CPackager::header(arguments.name));
    if (problem.empty() && !arguments.depfile.empty())
        problem = qrbdoc::writeFileWhole(arguments.depfile,
                                         qrbdoc::dependencyRule(arguments.target, packager.dependencies()));
    if (problem.empty())
        problem = qrbdoc::writeFileWhole(arguments.target, packager.assembler(arguments.name));
    return problem.empty() ? 0 : fail(problem);
}
