// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Packager/CPackager.h"

#include "Tools/DocCompiler/CCompileSession.h"
#include "Tools/DocCompiler/DocumentCheck.h"

#include <filesystem>
#include <sstream>

namespace qrbpack {

namespace {

namespace fs = std::filesystem;

std::string folderOf(const std::string& path)
{
    return fs::path(path).parent_path().string();
}

/// A string of the assembler: everything but plain characters as octal.
std::string quoted(const std::string& text)
{
    std::string out = "\"";
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (code >= 0x20 && code < 0x7F && c != '"' && c != '\\') {
            out += c;
            continue;
        }
        out += '\\';
        for (const int shift : {6, 3, 0})
            out += static_cast<char>('0' + ((code >> shift) & 7));
    }
    return out + '"';
}

} // namespace

void CPackager::addDocument(const std::string& path, const qrbdoc::Options& options)
{
    const qrbdoc::Result result = qrbdoc::compileFile(path, options);
    m_errors.insert(m_errors.end(), result.errors.begin(), result.errors.end());
    m_dependencies.insert(m_dependencies.end(), result.dependencies.begin(), result.dependencies.end());
    for (const qrbdoc::PackedFile& file : result.packedFiles)
        add(file, folderOf(path));
}

void CPackager::addList(const std::string& path)
{
    const std::optional<std::string> text = qrbdoc::readWholeFile(path);
    if (!text) {
        m_errors.push_back({path, 0, 0, "cannot read the file"});
        return;
    }
    m_dependencies.push_back(path);
    std::istringstream lines(*text);
    std::string line;
    for (std::size_t number = 1; std::getline(lines, line); ++number) {
        if (line.ends_with('\r'))
            line.pop_back();
        if (line.empty() || line[0] == '#')
            continue;
        qrbdoc::PackedFile file;
        file.place = {path, number, 1, qrbdoc::splitPackedFile(line, file)};
        if (file.place.message.empty())
            add(file, folderOf(path));
        else
            m_errors.push_back(file.place);
    }
}

void CPackager::addFile(const std::string& text)
{
    qrbdoc::PackedFile file;
    file.place = {"command line", 0, 0, qrbdoc::splitPackedFile(text, file)};
    if (file.place.message.empty())
        add(file, {});
    else
        m_errors.push_back(file.place);
}

std::string CPackager::find(const std::string& source, const std::string& folder) const
{
    std::vector<std::string> folders = m_folders;
    folders.insert(folders.begin(), folder);
    for (const std::string& candidate : folders) {
        const fs::path path = fs::path(candidate) / source;
        std::error_code code;
        if (fs::is_regular_file(path, code))
            return fs::absolute(path).lexically_normal().string();
    }
    return {};
}

void CPackager::add(const qrbdoc::PackedFile& file, const std::string& folder)
{
    const auto fail = [&](const std::string& message) {
        qrbdoc::Diagnostic error = file.place;
        error.message = message;
        m_errors.push_back(error);
    };
    const std::string path = find(file.source, folder);
    if (path.empty())
        return fail("there is no file '" + file.source + "' for the resource '" + file.resource + "'");
    std::error_code code;
    if (fs::file_size(path, code) > 0xFFFFFFFFU || code)
        return fail("'" + path + "' is too large for a resource");
    if (const auto [known, isNew] = m_placeOfName.try_emplace(file.resource, file.place.text()); !isNew)
        return fail("resource '" + file.resource + "' is there already, from " + known->second);
    m_resources.push_back({file.resource, path});
    m_dependencies.push_back(path);
}

std::string CPackager::assembler(const std::string& name) const
{
    std::ostringstream out;
    out << "/* Made by qrb-pack. */\n    .section .rodata\n";
    for (std::size_t i = 0; i < m_resources.size(); ++i) {
        // Twelve bytes of filling put the data behind the size on a multiple of 16.
        out << "    .balign 16\n    .skip 12\n.Lsize" << i << ":\n    .long .Lend" << i << " - .Ldata" << i
            << "\n.Ldata" << i << ":\n    .incbin " << quoted(m_resources[i].path) << "\n.Lend" << i << ":\n.Lname" << i
            << ":\n    .asciz " << quoted(m_resources[i].name) << "\n";
    }
    const std::string table = "qrb_" + name;
    const std::string count = table + "_count";
    out << "    .balign 8\n    .globl " << count << "\n    .hidden " << count << "\n    .type " << count
        << ", @object\n    .size " << count << ", 8\n"
        << count << ":\n    .quad " << m_resources.size() << "\n"
        << "    .section .data.rel.ro, \"aw\"\n    .balign 8\n    .globl " << table << "\n    .hidden " << table
        << "\n    .type " << table << ", @object\n    .size " << table << ", " << 16 * (m_resources.size() + 1) << "\n"
        << table << ":\n";
    for (std::size_t i = 0; i < m_resources.size(); ++i)
        out << "    .quad .Lsize" << i << ", .Lname" << i << "\n";
    out << "    .quad 0, 0\n    .section .note.GNU-stack, \"\", @progbits\n";
    return out.str();
}

std::string CPackager::header(const std::string& name)
{
    std::string out = R"(// SPDX-License-Identifier: GPL-3.0-or-later
// Made by qrb-pack.
#pragma once

#include "Core/CResourceStore.h"

#include <cstdint>
#include <span>

extern "C" const qrb::CResourceRow qrb_NAME[];
extern "C" const std::uint64_t qrb_NAME_count;

namespace qrb {

/// The data files linked into this program, for CModuleConfig::resources.
inline std::span<const CResourceRow> NAME()
{
    return {qrb_NAME, static_cast<std::size_t>(qrb_NAME_count)};
}

} // namespace qrb
)";
    for (std::size_t at = out.find("NAME"); at != std::string::npos; at = out.find("NAME", at + name.size()))
        out.replace(at, 4, name);
    return out;
}

} // namespace qrbpack
