// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/DocCompiler/DocCompiler.h"

#include <map>
#include <string>
#include <vector>

namespace qrbpack {

/// Collects the data files of a resource store and writes the assembler source that links them in. The assembler takes
/// the files' bytes as they are, so nothing is copied at run time.
///
/// Each resource is its size as u32, little endian, followed by the data, which begins at a multiple of 16 bytes. The
/// table holds pairs (pointer to the size, pointer to the name) and ends with a pair of null pointers.
class CPackager {
public:
    /// Where sources are looked for besides the folder of what names them.
    void addFolder(const std::string& folder) { m_folders.push_back(folder); }

    /// The files that the document's objects named "appdata" ask for, relative to the document.
    void addDocument(const std::string& path, const qrbdoc::Options& options = {});
    /// A text file with a line "source|resource" or "resource" for each file, relative to the text file; empty lines
    /// and lines that begin with "#" are skipped.
    void addList(const std::string& path);
    /// One "source|resource" of the command line, relative to the current folder.
    void addFile(const std::string& text);

    [[nodiscard]] const std::vector<qrbdoc::Diagnostic>& errors() const { return m_errors; }
    /// Everything read or packed, for the build.
    [[nodiscard]] const std::vector<std::string>& dependencies() const { return m_dependencies; }

    /// Assembler source with the table under the symbol qrb_`name` and its count of rows under qrb_`name`_count.
    [[nodiscard]] std::string assembler(const std::string& name) const;
    /// C++ header with the function qrb::`name`() that gives the table.
    [[nodiscard]] static std::string header(const std::string& name);

private:
    struct Resource {
        std::string name;
        std::string path; ///< Absolute: the assembler runs in another folder.
    };

    void add(const qrbdoc::PackedFile& file, const std::string& folder);
    [[nodiscard]] std::string find(const std::string& source, const std::string& folder) const;

    std::vector<std::string> m_folders;
    std::vector<Resource> m_resources;
    std::map<std::string, std::string> m_placeOfName;
    std::vector<std::string> m_dependencies;
    std::vector<qrbdoc::Diagnostic> m_errors;
};

} // namespace qrbpack
