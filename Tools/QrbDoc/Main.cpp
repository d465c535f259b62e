// SPDX-License-Identifier: GPL-3.0-or-later
// qrb-doc: compiles definition documents and prints compiled ones.
#include "Tools/DocCompiler/CCompileSession.h"
#include "Tools/DocCompiler/DocCompiler.h"
#include "Tools/DocCompiler/ToolFiles.h"

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr int kFailure = 2;

constexpr const char* kHelp =
    "qrb-doc: compiles definition documents\n"
    "\n"
    "  qrb-doc compile [options] IN.xml OUT   XML to the compiled form\n"
    "  qrb-doc check [options] IN.xml         the same without writing anything\n"
    "  qrb-doc print IN [OUT.xml]             a compiled document as XML (standard output without OUT.xml)\n"
    "\n"
    "Options:\n"
    "  -D NAME=VALUE      a variable that $(NAME) gives everywhere in the document\n"
    "  --depfile FILE     write what OUT depends on, as a rule for make or ninja\n"
    "  -h, --help         this text\n"
    "\n"
    "Errors go to standard error as file:line:column: message; the exit status is then 2 and nothing is written.\n";

struct Arguments {
    std::vector<std::string> words;
    std::string depfile;
    qrbdoc::Options options;
};

int fail(const std::string& message)
{
    std::fprintf(stderr, "qrb-doc: %s\n", message.c_str());
    return kFailure;
}

/// Returns what is wrong, empty on success.
std::string parseArguments(int count, char** values, Arguments& out)
{
    for (int i = 1; i < count; ++i) {
        const std::string word = values[i];
        const bool takesValue = word == "-D" || word == "--depfile";
        if (takesValue && i + 1 == count)
            return "'" + word + "' needs a value";
        if (word == "--depfile") {
            out.depfile = values[++i];
        } else if (word == "-D") {
            const std::string definition = values[++i];
            const std::size_t equals = definition.find('=');
            if (equals == std::string::npos || equals == 0)
                return "'" + definition + "' is not of the form NAME=VALUE";
            out.options.variables[definition.substr(0, equals)] = definition.substr(equals + 1);
        } else if (word.size() > 1 && word[0] == '-') {
            return "unknown option '" + word + "'; see qrb-doc --help";
        } else {
            out.words.push_back(word);
        }
    }
    return {};
}

int compile(const Arguments& arguments, bool isWriting)
{
    const qrbdoc::Result result = qrbdoc::compileFile(arguments.words[1], arguments.options);
    for (const qrbdoc::Diagnostic& warning : result.warnings)
        std::fprintf(stderr, "%s (warning)\n", warning.text().c_str());
    std::fputs(result.errorText().c_str(), stderr);
    if (!result.ok())
        return kFailure;
    if (!isWriting)
        return 0;
    const std::string& target = arguments.words[2];
    const std::string_view content(reinterpret_cast<const char*>(result.bytes.data()), result.bytes.size());
    std::string problem = qrbdoc::writeFileWhole(target, content);
    if (problem.empty() && !arguments.depfile.empty())
        problem = qrbdoc::writeFileWhole(arguments.depfile, qrbdoc::dependencyRule(target, result.dependencies));
    return problem.empty() ? 0 : fail(problem);
}

int print(const Arguments& arguments)
{
    const std::string& path = arguments.words[1];
    const std::optional<std::string> content = qrbdoc::readWholeFile(path);
    if (!content)
        return fail("cannot read '" + path + "'");
    const qrbdoc::Printed printed =
        qrbdoc::print({reinterpret_cast<const std::uint8_t*>(content->data()), content->size()});
    if (!printed.ok())
        return fail(path + ": " + printed.error);
    if (arguments.words.size() == 3) {
        const std::string problem = qrbdoc::writeFileWhole(arguments.words[2], printed.xml);
        return problem.empty() ? 0 : fail(problem);
    }
    const bool isWritten = std::fwrite(printed.xml.data(), 1, printed.xml.size(), stdout) == printed.xml.size();
    return isWritten && std::fflush(stdout) == 0 ? 0 : fail("cannot write to standard output");
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
    const std::vector<std::string>& words = arguments.words;
    const std::string command = words.empty() ? std::string() : words[0];
    if (command == "compile" && words.size() == 3)
        return compile(arguments, true);
    if (command == "check" && words.size() == 2)
        return compile(arguments, false);
    if (command == "print" && (words.size() == 2 || words.size() == 3))
        return print(arguments);
    std::fputs(kHelp, stderr);
    return kFailure;
}
