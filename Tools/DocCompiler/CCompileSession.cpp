// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/DocCompiler/CCompileSession.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace qrbdoc {

const CSourceFile* CCompileSession::add(const std::string& path, std::string text)
{
    m_result.dependencies.push_back(path);
    auto file = std::make_unique<CSourceFile>(path, std::move(text));
    Diagnostic diagnostic;
    if (!file->parse(diagnostic)) {
        error(std::move(diagnostic));
        file.reset();
    }
    return (m_files[path] = std::move(file)).get();
}

const CSourceFile* CCompileSession::load(const std::string& path, bool& isReadable)
{
    isReadable = true;
    if (const auto known = m_files.find(path); known != m_files.end())
        return known->second.get();
    std::optional<std::string> text = m_options.readFile ? m_options.readFile(path) : readWholeFile(path);
    isReadable = text.has_value();
    return isReadable ? add(path, std::move(*text)) : nullptr;
}

void CCompileSession::error(SourcePlace place, std::string message)
{
    error(place.file->diagnose(place.offset, std::move(message)));
}

void CCompileSession::error(Diagnostic diagnostic)
{
    if (!isGivenUp())
        m_result.errors.push_back(std::move(diagnostic));
}

void CCompileSession::warning(SourcePlace place, std::string message)
{
    m_result.warnings.push_back(place.file->diagnose(place.offset, std::move(message)));
}

std::optional<std::string> readWholeFile(const std::string& path)
{
    std::error_code code;
    if (!std::filesystem::is_regular_file(path, code))
        return {};
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
        return {};
    std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (stream.bad())
        return {};
    return text;
}

std::string nearestName(const std::string& name, const std::set<std::string>& candidates)
{
    std::string nearest;
    std::size_t fewest = 1 + name.size() / 3;
    for (const std::string& candidate : candidates) {
        std::vector<std::size_t> row(candidate.size() + 1);
        for (std::size_t j = 0; j < row.size(); ++j)
            row[j] = j;
        for (std::size_t i = 0; i < name.size(); ++i) {
            std::size_t diagonal = row[0]++;
            for (std::size_t j = 0; j < candidate.size(); ++j) {
                const std::size_t replaced = diagonal + (name[i] == candidate[j] ? 0 : 1);
                diagonal = row[j + 1];
                row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
            }
        }
        if (row.back() < fewest || (row.back() == fewest && nearest.empty())) {
            fewest = row.back();
            nearest = candidate;
        }
    }
    return nearest;
}

std::string suggestion(const std::string& name, const std::set<std::string>& candidates)
{
    const std::string nearest = nearestName(name, candidates);
    return nearest.empty() ? std::string() : ", did you mean '" + nearest + "'?";
}

} // namespace qrbdoc
