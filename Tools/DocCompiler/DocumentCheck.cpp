// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/DocCompiler/DocumentCheck.h"

#include <algorithm>

namespace qrbdoc {

namespace {

void collectTemplates(const DocumentNode& node, std::set<std::string>& names)
{
    for (const DocumentNode& child : node.children) {
        if (child.isTemplate)
            names.insert(child.name);
        collectTemplates(child, names);
    }
}

class CChecker {
public:
    CChecker(CCompileSession& session, std::set<std::string> templates)
        : m_session(session), m_templates(std::move(templates))
    {
        for (const auto& [tag, attributes] : session.options().knownTags)
            m_tags.insert(tag);
    }

    void check(const DocumentNode& node)
    {
        if (!node.isTemplate && m_templates.contains(node.tag))
            m_session.error(node.place, "'" + node.tag +
                                            "' is a run-time template, which a document cannot instantiate; "
                                            "use a fragment");
        if (!m_tags.empty())
            checkKnown(node);
        for (const DocumentNode& child : node.children)
            check(child);
    }

private:
    void checkKnown(const DocumentNode& node)
    {
        const auto known = m_session.options().knownTags.find(node.tag);
        if (known == m_session.options().knownTags.end()) {
            m_session.warning(node.place, "unknown tag '" + node.tag + "'" + suggestion(node.tag, m_tags));
            return;
        }
        if (known->second.contains("*"))
            return;
        for (const auto& [name, value] : node.attributes)
            if (!known->second.contains(name))
                m_session.warning(node.place, "'" + node.tag + "' reads no attribute '" + name + "'" +
                                                  suggestion(name, known->second));
    }

    CCompileSession& m_session;
    std::set<std::string> m_templates;
    std::set<std::string> m_tags;
};

} // namespace

void checkDocument(CCompileSession& session, const DocumentNode& root)
{
    std::set<std::string> templates = session.options().templateNames;
    collectTemplates(root, templates);
    CChecker checker(session, std::move(templates));
    for (const DocumentNode& child : root.children)
        checker.check(child);
}

std::string splitPackedFile(const std::string& text, PackedFile& out)
{
    const std::size_t bar = text.find('|');
    out.source = text.substr(0, bar);
    out.resource = bar == std::string::npos ? text : text.substr(bar + 1);
    const bool isGood = !out.source.empty() && !out.resource.empty() && out.resource.find('|') == std::string::npos;
    return isGood ? std::string() : "'" + text + "' is not of the form 'source|resource'";
}

std::vector<PackedFile> collectPackedFiles(CCompileSession& session, const DocumentNode& root)
{
    std::vector<PackedFile> out;
    for (const DocumentNode& child : root.children) {
        if (child.name == "appdata" && !child.isTemplate) {
            const auto isFile = [](const auto& attribute) { return attribute.first == "file"; };
            const auto file = std::find_if(child.attributes.begin(), child.attributes.end(), isFile);
            PackedFile packed;
            packed.place = child.place.file->diagnose(child.place.offset, {});
            const std::string text = file == child.attributes.end() ? std::string() : file->second;
            if (const std::string problem = splitPackedFile(text, packed); !problem.empty())
                session.error(child.place, "attribute 'file' of an 'appdata' object: " + problem);
            else
                out.push_back(std::move(packed));
        }
        for (PackedFile& packed : collectPackedFiles(session, child))
            out.push_back(std::move(packed));
    }
    return out;
}

} // namespace qrbdoc
