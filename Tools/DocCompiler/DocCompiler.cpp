// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/DocCompiler/DocCompiler.h"

#include "Tools/DocCompiler/CCompileSession.h"
#include "Tools/DocCompiler/CDocumentWriter.h"
#include "Tools/DocCompiler/CExpander.h"
#include "Tools/DocCompiler/DocumentCheck.h"

#include <filesystem>

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

Result compileText(std::string_view xml, const std::string& fileName, const Options& options)
{
    Result result;
    CCompileSession session(options, result);
    const CSourceFile* file =
        session.add(std::filesystem::path(fileName).lexically_normal().string(), std::string(xml));
    if (file == nullptr)
        return result;
    CExpander expander(session);
    const DocumentNode root = expander.expand(*file);
    if (!session.hasErrors())
        checkDocument(session, root);
    if (!session.hasErrors())
        result.packedFiles = collectPackedFiles(session, root);
    std::vector<std::uint8_t> bytes;
    if (!session.hasErrors())
        bytes = CDocumentWriter(session).write(root);
    if (!session.hasErrors())
        result.bytes = std::move(bytes);
    return result;
}

Result compileFile(const std::string& path, const Options& options)
{
    const std::optional<std::string> text = options.readFile ? options.readFile(path) : readWholeFile(path);
    if (text)
        return compileText(*text, path, options);
    Result result;
    result.errors.push_back({path, 0, 0, "cannot read the file"});
    return result;
}

} // namespace qrbdoc
