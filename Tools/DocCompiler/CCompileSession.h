// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/DocCompiler/CSourceFile.h"
#include "Tools/DocCompiler/DocCompiler.h"

#include <map>
#include <memory>

namespace qrbdoc {

/// What all steps of one compilation share: the files read and the findings.
class CCompileSession {
public:
    CCompileSession(const Options& options, Result& result) : m_options(options), m_result(result) {}

    [[nodiscard]] const Options& options() const { return m_options; }
    [[nodiscard]] bool hasErrors() const { return !m_result.errors.empty(); }
    /// True when more errors would only be noise.
    [[nodiscard]] bool isGivenUp() const { return m_result.errors.size() >= kMaxErrors; }

    /// Parses `text`; null after reporting an error.
    const CSourceFile* add(const std::string& path, std::string text);
    /// The file `path`, read once however often it is asked for; null with nothing reported if it cannot be read, null
    /// with an error reported if it cannot be parsed.
    const CSourceFile* load(const std::string& path, bool& isReadable);

    void error(SourcePlace place, std::string message);
    void error(Diagnostic diagnostic);
    void warning(SourcePlace place, std::string message);

private:
    static constexpr std::size_t kMaxErrors = 30;

    const Options& m_options;
    Result& m_result;
    std::map<std::string, std::unique_ptr<CSourceFile>> m_files; ///< A null value is a file that did not parse.
};

/// Whole content of a file; nothing if it cannot be read.
[[nodiscard]] std::optional<std::string> readWholeFile(const std::string& path);

/// The name in `candidates` nearest to `name` by edits, empty if none is near.
[[nodiscard]] std::string nearestName(const std::string& name, const std::set<std::string>& candidates);

/// ", did you mean 'x'?" or nothing.
[[nodiscard]] std::string suggestion(const std::string& name, const std::set<std::string>& candidates);

} // namespace qrbdoc
