// SPDX-License-Identifier: GPL-3.0-or-later
// The authoring tags of CExpander.
#include "Tools/DocCompiler/CExpander.h"

#include <algorithm>
#include <charconv>
#include <filesystem>

namespace qrbdoc {

namespace {

bool toInteger(const std::string& text, long& out)
{
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), out);
    return code == std::errc() && end == text.data() + text.size() && !text.empty();
}

bool isVariableName(const std::string& text)
{
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
    return !text.empty() && isLetter(text[0]) &&
           std::all_of(text.begin(), text.end(), [&](char c) { return isLetter(c) || (c >= '0' && c <= '9'); });
}

using ArgumentList = std::vector<std::pair<std::string, std::optional<std::string>>>;

/// Reads "a b=1 c='two words'"; returns what is wrong, empty on success.
std::string parseArgumentList(const std::string& text, ArgumentList& out)
{
    const char* const blanks = " \t\r\n";
    std::size_t at = text.find_first_not_of(blanks);
    while (at != std::string::npos) {
        const std::size_t nameEnd = std::min(text.find_first_of(" \t\r\n=", at), text.size());
        const std::string name = text.substr(at, nameEnd - at);
        if (!isVariableName(name) || name == "fragment")
            return "'" + name + "' cannot be the name of an argument";
        if (std::any_of(out.begin(), out.end(), [&](const auto& known) { return known.first == name; }))
            return "argument '" + name + "' is declared twice";
        std::optional<std::string> fallback;
        at = nameEnd;
        if (at < text.size() && text[at] == '=') {
            ++at;
            const bool isQuoted = at < text.size() && (text[at] == '\'' || text[at] == '"');
            std::size_t end = isQuoted ? text.find(text[at], at + 1) : text.find_first_of(blanks, at);
            if (isQuoted && end == std::string::npos)
                return "the default of argument '" + name + "' has no closing quote";
            end = std::min(end, text.size());
            const std::size_t start = isQuoted ? at + 1 : at;
            fallback = text.substr(start, end - start);
            at = isQuoted ? end + 1 : end;
        }
        out.emplace_back(name, std::move(fallback));
        at = text.find_first_not_of(blanks, at);
    }
    return {};
}

} // namespace

void CExpander::include(pugi::xml_node element, const Context& context, Target& target)
{
    const SourcePlace place = context.file->place(element);
    const auto arguments = readArguments(element, context, {{"file"}});
    if (!arguments)
        return;
    if (element.first_child())
        return error(place, "'doc:include' is empty");
    const std::filesystem::path folder = std::filesystem::path(context.file->path()).parent_path();
    const std::string path = (folder / (*arguments)[0]).lexically_normal().string();
    bool isReadable = false;
    const CSourceFile* file = m_session.load(path, isReadable);
    if (!isReadable)
        return error(place, "cannot read the included file '" + path + "'");
    if (file == nullptr)
        return;
    if (std::find(m_openFiles.begin(), m_openFiles.end(), file) != m_openFiles.end())
        return error(place, "'" + path + "' includes itself");
    if (std::string_view(file->root().name()) != "doc:part" || file->root().first_attribute())
        return error(file->place(file->root()), "the root of an included file is 'doc:part' without attributes");
    m_openFiles.push_back(file);
    Context inner = context;
    inner.file = file;
    expandChildren(file->root(), inner, target);
    m_openFiles.pop_back();
}

void CExpander::repeat(pugi::xml_node element, const Context& context, Target& target)
{
    const SourcePlace place = context.file->place(element);
    const auto arguments = readArguments(element, context, {{"count"}, {"var", "i"}, {"from", "0"}, {"step", "1"}});
    if (!arguments)
        return;
    long count = 0;
    long from = 0;
    long step = 0;
    const auto isInRange = [](long value) { return value >= -1'000'000 && value <= 1'000'000; };
    if (!toInteger((*arguments)[0], count) || count < 0 || !isInRange(count))
        return error(place, "'" + (*arguments)[0] + "' is not a count");
    if (!toInteger((*arguments)[2], from) || !toInteger((*arguments)[3], step) || !isInRange(from) || !isInRange(step))
        return error(place, "'from' and 'step' must be integers");
    if (!isVariableName((*arguments)[1]))
        return error(place, "'" + (*arguments)[1] + "' cannot be the name of a variable");
    Variables variables = *context.variables;
    Context inner = context;
    inner.variables = &variables;
    for (long i = 0; i < count && element.first_child() && !m_session.isGivenUp(); ++i) {
        variables[(*arguments)[1]] = std::to_string(from + i * step);
        expandChildren(element, inner, target);
    }
}

void CExpander::defineFragment(pugi::xml_node element, const Context& context)
{
    const SourcePlace place = context.file->place(element);
    // Defaults are resolved at each use, where they may refer to the arguments in front of them.
    Fragment fragment{context.file, element, {}};
    std::string name;
    std::size_t index = 0;
    for (const pugi::xml_attribute attribute : element.attributes()) {
        const SourcePlace attributePlace = context.file->attributePlace(element, index++);
        const std::string_view attributeName = attribute.name();
        if (attributeName == "name") {
            name = substituted(attribute.value(), context, attributePlace);
        } else if (attributeName == "args") {
            const std::string problem = parseArgumentList(attribute.value(), fragment.arguments);
            if (!problem.empty())
                error(attributePlace, problem);
        } else {
            error(attributePlace, "'doc:fragment' has no attribute '" + std::string(attributeName) + "'");
        }
    }
    if (name.empty())
        return error(place, "'doc:fragment' needs the attribute 'name'");
    const auto [known, isNew] = m_fragments.try_emplace(name, fragment);
    // A file of fragments may be included by everyone who needs it.
    if (!isNew && known->second.node != element)
        error(place, "fragment '" + name + "' is defined twice");
}

void CExpander::useFragment(pugi::xml_node element, const Context& context, Target& target)
{
    const SourcePlace place = context.file->place(element);
    const std::string name = substituted(element.attribute("fragment").value(), context, place);
    const auto found = m_fragments.find(name);
    if (found == m_fragments.end()) {
        std::set<std::string> names;
        for (const auto& [key, value] : m_fragments)
            names.insert(key);
        return error(place, "no fragment '" + name + "' is defined" + suggestion(name, names));
    }
    const Fragment& fragment = found->second;
    std::map<std::string, std::string> given;
    std::size_t index = 0;
    for (const pugi::xml_attribute attribute : element.attributes()) {
        const SourcePlace attributePlace = context.file->attributePlace(element, index++);
        const std::string key = attribute.name();
        if (key != "fragment" && std::none_of(fragment.arguments.begin(), fragment.arguments.end(),
                                              [&](const auto& argument) { return argument.first == key; }))
            error(attributePlace, "fragment '" + name + "' has no argument '" + key + "'");
        else if (!given.emplace(key, substituted(attribute.value(), context, attributePlace)).second)
            error(attributePlace, "argument '" + key + "' is given twice");
    }
    Variables variables(m_session.options().variables.begin(), m_session.options().variables.end());
    const Slot slot{element, &context};
    const Context inner{fragment.file, &variables, &slot, context.depth};
    m_uses.push_back(place);
    bool isComplete = true;
    for (const auto& [key, fallback] : fragment.arguments) {
        if (const auto value = given.find(key); value != given.end()) {
            variables[key] = value->second;
        } else if (fallback) {
            variables[key] = substituted(*fallback, inner, fragment.file->place(fragment.node));
        } else {
            m_session.error(place, "fragment '" + name + "' needs the argument '" + key + "'");
            isComplete = false;
        }
    }
    if (isComplete)
        expandChildren(fragment.node, inner, target);
    m_uses.pop_back();
}

void CExpander::fillSlot(pugi::xml_node element, const Context& context, Target& target)
{
    if (context.slot == nullptr)
        return error(context.file->place(element), "'doc:slot' outside of a fragment");
    Context inner = *context.slot->context;
    inner.depth = context.depth;
    expandChildren(context.slot->use, inner, target);
}

void CExpander::addAttributes(pugi::xml_node element, const Context& context, Target& target)
{
    std::size_t index = 0;
    for (const pugi::xml_attribute attribute : element.attributes()) {
        const SourcePlace place = context.file->attributePlace(element, index++);
        const std::string name = attribute.name();
        if (name == "name" || name.starts_with("doc:"))
            error(place, "'" + name + "' cannot be added to an object");
        else
            addAttribute(target, name, substituted(attribute.value(), context, place), place);
    }
    if (element.first_child())
        error(context.file->place(element), "'doc:attrs' is empty");
}

void CExpander::addComputedAttribute(pugi::xml_node element, const Context& context, Target& target)
{
    const SourcePlace place = context.file->place(element);
    auto arguments = readArguments(element, context, {{"name"}, {"value"}});
    if (!arguments)
        return;
    if ((*arguments)[0].empty() || (*arguments)[0] == "name")
        return error(place, "'" + (*arguments)[0] + "' cannot be added to an object");
    addAttribute(target, (*arguments)[0], std::move((*arguments)[1]), place);
}

void CExpander::expandIf(pugi::xml_node element, const Context& context, Target& target)
{
    const bool isNegated = element.attribute("not");
    const auto arguments = readArguments(element, context, {{"value"}, {isNegated ? "not" : "is"}});
    if (arguments && ((*arguments)[0] == (*arguments)[1]) != isNegated)
        expandChildren(element, context, target);
}

} // namespace qrbdoc
