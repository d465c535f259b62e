// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/DocCompiler/CCompileSession.h"
#include "Tools/DocCompiler/DocumentNode.h"

#include <unordered_set>

namespace qrbdoc {

/// Turns source files into one tree of objects: resolves every authoring tag and every `$(...)`.
class CExpander {
public:
    explicit CExpander(CCompileSession& session) : m_session(session) {}

    /// The tree of a document; of no use when the session has errors.
    [[nodiscard]] DocumentNode expand(const CSourceFile& file);

private:
    using Variables = std::map<std::string, std::string, std::less<>>;

    struct Slot;
    /// What an element is read under: its file, the variables seen, and the children handed to the fragment.
    struct Context {
        const CSourceFile* file = nullptr;
        const Variables* variables = nullptr;
        const Slot* slot = nullptr;
        int depth = 0;
    };
    struct Slot {
        pugi::xml_node use;
        const Context* context = nullptr;
    };
    struct Fragment {
        const CSourceFile* file = nullptr;
        pugi::xml_node node;
        std::vector<std::pair<std::string, std::optional<std::string>>> arguments; ///< Name and default text.
    };
    /// A node under construction.
    struct Target {
        DocumentNode& node;
        std::unordered_set<std::string> attributeNames = {};
        bool isRoot = false;
    };
    struct Argument {
        const char* name;
        std::optional<std::string> fallback = {}; ///< None: required.
    };

    void expandChildren(pugi::xml_node parent, const Context& context, Target& target, bool takesText = false);
    void expandElement(pugi::xml_node element, const Context& context, Target& target);
    void expandObject(pugi::xml_node element, const Context& context, Target& parent);
    void include(pugi::xml_node element, const Context& context, Target& target);
    void repeat(pugi::xml_node element, const Context& context, Target& target);
    void defineFragment(pugi::xml_node element, const Context& context);
    void useFragment(pugi::xml_node element, const Context& context, Target& target);
    void fillSlot(pugi::xml_node element, const Context& context, Target& target);
    void addAttributes(pugi::xml_node element, const Context& context, Target& target);
    void addComputedAttribute(pugi::xml_node element, const Context& context, Target& target);
    void expandIf(pugi::xml_node element, const Context& context, Target& target);

    void readObjectAttributes(pugi::xml_node element, const Context& context, Target& target);
    void readText(pugi::xml_node text, const Context& context, Target& target);
    void addAttribute(Target& target, const std::string& name, std::string value, SourcePlace place);
    /// Values of an authoring tag's attributes, in the order of `arguments`; nothing after an error.
    std::optional<std::vector<std::string>> readArguments(pugi::xml_node element, const Context& context,
                                                          const std::vector<Argument>& arguments);
    std::string substituted(std::string_view text, const Context& context, SourcePlace place);
    void error(SourcePlace place, const std::string& message);

    CCompileSession& m_session;
    std::map<std::string, Fragment> m_fragments;
    std::vector<const CSourceFile*> m_openFiles; ///< Chain of includes, to find cycles.
    std::vector<SourcePlace> m_uses;             ///< Chain of fragment uses, told with every error.
    std::size_t m_elementCount = 0;              ///< Expanded so far, repeated ones each time.
};

} // namespace qrbdoc
