// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/DocCompiler/CCompiledReader.h"
#include "Tools/DocCompiler/DocCompiler.h"
#include "Tools/DocCompiler/Substitution.h"

#include <algorithm>

namespace qrbdoc {

namespace {

std::string quoted(const std::string& value)
{
    std::string out = "\"";
    for (const char c : escapeSubstitution(value)) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            if (static_cast<unsigned char>(c) < 0x20)
                out += "&#" + std::to_string(static_cast<int>(c)) + ";";
            else
                out += c;
        }
    }
    return out + '"';
}

/// Whether the text can stand as a tag or attribute name and reads back as itself.
bool isPlainName(const std::string& text)
{
    const auto isLetter = [](unsigned char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c >= 0x80;
    };
    const auto isFollowing = [&](unsigned char c) {
        return isLetter(c) || (c >= '0' && c <= '9') || c == ':' || c == '-' || c == '.';
    };
    return !text.empty() && !text.starts_with("doc:") && isLetter(static_cast<unsigned char>(text[0])) &&
           std::all_of(text.begin(), text.end(), [&](char c) { return isFollowing(static_cast<unsigned char>(c)); });
}

class CPrinter {
public:
    Printed print(const DocumentNode& root)
    {
        m_out.xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
        printElement(root, "document", "", 0);
        return std::move(m_out);
    }

private:
    void printChild(const DocumentNode& node, int depth)
    {
        if (node.isTemplate)
            return printElement(node, kTemplateTag, " name=" + quoted(node.name) + " class=" + quoted(node.tag), depth);
        if (isPlainName(node.tag))
            return printElement(node, node.tag, " name=" + quoted(node.name), depth);
        if (node.tag.empty() || node.tag.starts_with("doc:"))
            m_out.error = "the tag '" + node.tag + "' cannot be written as XML";
        printElement(node, "doc:element", " doc:tag=" + quoted(node.tag) + " name=" + quoted(node.name), depth);
    }

    void printElement(const DocumentNode& node, const std::string& tag, const std::string& head, int depth)
    {
        const std::string indent(static_cast<std::size_t>(depth) * 2, ' ');
        m_out.xml += indent + "<" + tag + head;
        for (const auto& [name, value] : node.attributes)
            if (name == "name" || name.empty())
                m_out.error = "an attribute '" + name + "' cannot be written as XML";
        // From the first name on that XML cannot carry, attributes go into elements, which keeps their order.
        std::size_t plain = 0;
        for (; plain < node.attributes.size(); ++plain) {
            const auto& [name, value] = node.attributes[plain];
            if (!isPlainName(name) || (node.isTemplate && name == "class"))
                break;
            m_out.xml += " " + name + "=" + quoted(value);
        }
        if (plain == node.attributes.size() && node.children.empty()) {
            m_out.xml += "/>\n";
            return;
        }
        m_out.xml += ">\n";
        for (; plain < node.attributes.size(); ++plain)
            m_out.xml += indent + "  <doc:attr name=" + quoted(node.attributes[plain].first) +
                         " value=" + quoted(node.attributes[plain].second) + "/>\n";
        for (const DocumentNode& child : node.children)
            printChild(child, depth + 1);
        m_out.xml += indent + "</" + tag + ">\n";
    }

    Printed m_out;
};

} // namespace

Printed print(std::span<const std::uint8_t> bytes)
{
    DocumentNode root;
    if (std::string error = CCompiledReader(bytes).read(root); !error.empty())
        return {{}, std::move(error)};
    Printed out = CPrinter().print(root);
    if (!out.ok())
        out.xml.clear();
    return out;
}

} // namespace qrbdoc
