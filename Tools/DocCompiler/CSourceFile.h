// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/DocCompiler/DocCompiler.h"
#include "Tools/DocCompiler/DocumentNode.h"

#include <pugixml.hpp>

namespace qrbdoc {

/// A parsed source text that can tell the line and column of its elements and attributes.
class CSourceFile {
public:
    CSourceFile(std::string path, std::string text);

    /// Parses the text; false leaves what is wrong in `error`.
    [[nodiscard]] bool parse(Diagnostic& error);

    [[nodiscard]] const std::string& path() const { return m_path; }
    [[nodiscard]] pugi::xml_node root() const { return m_document.document_element(); }

    [[nodiscard]] SourcePlace place(pugi::xml_node node) const;
    /// Place of the attribute at `index` in the order written.
    [[nodiscard]] SourcePlace attributePlace(pugi::xml_node element, std::size_t index) const;
    [[nodiscard]] Diagnostic diagnose(std::size_t offset, std::string message) const;

private:
    [[nodiscard]] bool checkEncoding(Diagnostic& error) const;

    std::string m_path;
    std::string m_text;
    pugi::xml_document m_document;
};

} // namespace qrbdoc
