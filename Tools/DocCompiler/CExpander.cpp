// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/DocCompiler/CExpander.h"

#include "Tools/DocCompiler/Substitution.h"

#include <cstring>

namespace qrbdoc {

namespace {

constexpr std::string_view kAuthoringPrefix = "doc:";
/// Far above any product; stops repeats in repeats.
constexpr std::size_t kMaxElements = 2'000'000;
/// The same for one value; stops a fragment that hands a growing argument to itself.
constexpr std::size_t kMaxTextLength = 1'000'000;

std::string_view trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

} // namespace

DocumentNode CExpander::expand(const CSourceFile& file)
{
    const Variables variables(m_session.options().variables.begin(), m_session.options().variables.end());
    const Context context{&file, &variables};
    DocumentNode root;
    root.tag = file.root().name();
    root.place = file.place(file.root());
    if (root.tag.starts_with(kAuthoringPrefix))
        error(root.place, "'" + root.tag + "' cannot be the root of a document");
    m_openFiles.assign(1, &file);
    Target target{root};
    target.isRoot = true;
    readObjectAttributes(file.root(), context, target);
    expandChildren(file.root(), context, target);
    return root;
}

void CExpander::error(SourcePlace place, const std::string& message)
{
    std::string text = message;
    for (auto use = m_uses.rbegin(); use != m_uses.rend() && m_uses.rend() - use <= 4; ++use) {
        const Diagnostic where = use->file->diagnose(use->offset, {});
        text += " (used at " + where.file + ":" + std::to_string(where.line) + ":" + std::to_string(where.column) + ")";
    }
    m_session.error(place, std::move(text));
}

std::string CExpander::substituted(std::string_view text, const Context& context, SourcePlace place)
{
    const VariableLookup lookup = [&context](std::string_view name) -> const std::string* {
        const auto found = context.variables->find(name);
        return found == context.variables->end() ? nullptr : &found->second;
    };
    std::string out;
    if (const std::string problem = substitute(text, lookup, out); !problem.empty())
        error(place, problem);
    if (out.size() > kMaxTextLength) {
        error(place, "the text is longer than " + std::to_string(kMaxTextLength) + " bytes");
        out.clear();
    }
    return out;
}

void CExpander::expandChildren(pugi::xml_node parent, const Context& context, Target& target, bool takesText)
{
    for (const pugi::xml_node child : parent.children()) {
        if (m_session.isGivenUp())
            return;
        if (child.type() == pugi::node_element)
            expandElement(child, context, target);
        else if (takesText)
            readText(child, context, target);
        else
            error(context.file->place(child), "only 'content' takes text");
    }
}

void CExpander::readText(pugi::xml_node text, const Context& context, Target& target)
{
    const SourcePlace place = context.file->place(text);
    if (text.previous_sibling() && text.previous_sibling().type() != pugi::node_element)
        return error(place, "the text of 'content' must be in one piece");
    addAttribute(target, "value", substituted(trimmed(text.value()), context, place), place);
}

void CExpander::expandElement(pugi::xml_node element, const Context& outer, Target& target)
{
    Context context = outer;
    if (++context.depth > kMaxDepth)
        return error(context.file->place(element), "nested deeper than " + std::to_string(kMaxDepth) + " levels");
    if (++m_elementCount > kMaxElements)
        return error(context.file->place(element), "more than " + std::to_string(kMaxElements) + " elements");
    const std::string_view tag = element.name();
    if (!tag.starts_with(kAuthoringPrefix) || tag == "doc:element")
        return expandObject(element, context, target);
    if (tag == "doc:include")
        return include(element, context, target);
    if (tag == "doc:repeat")
        return repeat(element, context, target);
    if (tag == "doc:fragment")
        return defineFragment(element, context);
    if (tag == "doc:use")
        return useFragment(element, context, target);
    if (tag == "doc:slot")
        return fillSlot(element, context, target);
    if (tag == "doc:attrs")
        return addAttributes(element, context, target);
    if (tag == "doc:attr")
        return addComputedAttribute(element, context, target);
    if (tag == "doc:if")
        return expandIf(element, context, target);
    static const std::set<std::string> kTags = {"doc:attr",    "doc:attrs",  "doc:element", "doc:fragment", "doc:if",
                                                "doc:include", "doc:repeat", "doc:slot",    "doc:use"};
    const std::string name(tag);
    error(context.file->place(element), "no authoring tag '" + name + "'" + suggestion(name, kTags));
}

void CExpander::expandObject(pugi::xml_node element, const Context& context, Target& parent)
{
    const SourcePlace place = context.file->place(element);
    if (parent.node.children.size() == kMaxCount)
        return error(place, "more than " + std::to_string(kMaxCount) + " children");
    DocumentNode& node = parent.node.children.emplace_back();
    node.tag = element.name();
    node.place = place;
    Target target{node};
    readObjectAttributes(element, context, target);
    expandChildren(element, context, target, node.tag == "content" && !node.isTemplate);
}

void CExpander::readObjectAttributes(pugi::xml_node element, const Context& context, Target& target)
{
    DocumentNode& node = target.node;
    const bool isTemplate = node.tag == kTemplateTag && !target.isRoot;
    const bool isComputed = node.tag == "doc:element";
    bool hasName = false;
    bool hasTag = false;
    std::size_t index = 0;
    for (const pugi::xml_attribute attribute : element.attributes()) {
        const SourcePlace place = context.file->attributePlace(element, index++);
        const std::string name = attribute.name();
        std::string value = substituted(attribute.value(), context, place);
        const bool isTag = (isTemplate && name == "class") || (isComputed && name == "doc:tag");
        if (name == "name" && target.isRoot) {
            error(place, "the root has no name");
        } else if ((name == "name" && hasName) || (isTag && hasTag)) {
            error(place, "attribute '" + name + "' is given twice");
        } else if (name == "name") {
            hasName = true;
            node.name = std::move(value);
        } else if (isTag) {
            hasTag = true;
            node.tag = std::move(value);
        } else if (name.starts_with(kAuthoringPrefix)) {
            error(place, "no authoring attribute '" + name + "' here");
        } else {
            addAttribute(target, name, std::move(value), place);
        }
    }
    node.isTemplate = isTemplate;
    if ((isTemplate || isComputed) && (!hasTag || node.tag.empty()))
        error(node.place, isTemplate ? "a template needs the attribute 'class', the tag of its instances"
                                     : "'doc:element' needs the attribute 'doc:tag'");
    if (isComputed && (node.tag == kTemplateTag || node.tag.starts_with(kAuthoringPrefix)))
        error(node.place, "'" + node.tag + "' cannot be a computed tag");
    if (!hasName && node.tag == "content" && !isTemplate)
        node.name = "content";
    else if (!hasName && !target.isRoot)
        error(node.place, "'" + node.tag + "' has no name");
}

void CExpander::addAttribute(Target& target, const std::string& name, std::string value, SourcePlace place)
{
    if (!target.attributeNames.insert(name).second)
        return error(place, "attribute '" + name + "' is given twice");
    if (target.node.attributes.size() == kMaxCount)
        return error(place, "more than " + std::to_string(kMaxCount) + " attributes");
    target.node.attributes.emplace_back(name, std::move(value));
}

std::optional<std::vector<std::string>> CExpander::readArguments(pugi::xml_node element, const Context& context,
                                                                 const std::vector<Argument>& arguments)
{
    std::vector<std::optional<std::string>> values(arguments.size());
    bool isGood = true;
    const auto complain = [&](SourcePlace place, const std::string& message) {
        error(place, message);
        isGood = false;
    };
    std::size_t index = 0;
    for (const pugi::xml_attribute attribute : element.attributes()) {
        const SourcePlace place = context.file->attributePlace(element, index++);
        std::size_t found = 0;
        while (found < arguments.size() && std::strcmp(arguments[found].name, attribute.name()) != 0)
            ++found;
        if (found == arguments.size()) {
            complain(place, std::string("'") + element.name() + "' has no attribute '" + attribute.name() + "'");
        } else if (values[found]) {
            complain(place, std::string("attribute '") + attribute.name() + "' is given twice");
        } else {
            values[found] = substituted(attribute.value(), context, place);
        }
    }
    std::vector<std::string> out;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (!values[i] && !arguments[i].fallback)
            complain(context.file->place(element),
                     std::string("'") + element.name() + "' needs the attribute '" + arguments[i].name + "'");
        out.push_back(values[i] ? *values[i] : arguments[i].fallback.value_or(""));
    }
    return isGood ? std::optional(std::move(out)) : std::nullopt;
}

} // namespace qrbdoc
