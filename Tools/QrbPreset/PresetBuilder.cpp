// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamInfo.h"
#include "Core/CInputStream.h"
#include "Tools/DocCompiler/CCompileSession.h"
#include "Tools/DocCompiler/CSourceFile.h"
#include "Tools/QrbPreset/CItemText.h"
#include "Tools/QrbPreset/CProductParams.h"
#include "Tools/QrbPreset/PresetText.h"
#include "Tools/QrbPreset/TextEscape.h"

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <set>

namespace qrbpreset {

namespace {

/// Sections in sections; more is no sensible text, and would take the stack.
constexpr int kMaxDepth = 32;
/// Errors that are told of one text.
constexpr std::size_t kMaxErrors = 50;

std::optional<std::int32_t> wholeNumber(const std::string& text)
{
    std::int32_t value = 0;
    const auto [stop, problem] = std::from_chars(text.data(), text.data() + text.size(), value);
    return problem == std::errc() && stop == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

class CBuilder {
public:
    CBuilder(std::string text, const std::string& path, const CProductParams& params)
        : m_source(path, std::move(text)), m_params(params)
    {
    }

    CBuilt build()
    {
        qrbdoc::Diagnostic problem;
        if (!m_source.parse(problem)) {
            m_built.errors.push_back(problem);
            return std::move(m_built);
        }
        product::CPresetFile file;
        const pugi::xml_node root = m_source.root();
        const std::string_view kind = root.name();
        const CScope scope = scopeOf(root, {});
        if (kind == "preset") {
            file.banks.emplace_back().presets.push_back(readPreset(root, scope));
        } else if (kind == "bank") {
            file.kind = product::EFileKind::bank;
            file.banks.push_back(readBank(root, scope));
        } else if (kind == "list") {
            file.kind = product::EFileKind::list;
            readList(root, scope, file);
        } else {
            error(root, "the text is a <preset>, a <bank> or a <list>");
        }
        if (m_built.errors.empty())
            m_built.file = std::move(file);
        return std::move(m_built);
    }

private:
    /// The registry id that an element gives to what is in it.
    using CScope = std::optional<std::string>;

    [[nodiscard]] bool isGivenUp() const { return m_built.errors.size() >= kMaxErrors; }

    void error(pugi::xml_node node, const std::string& message)
    {
        if (!isGivenUp())
            m_built.errors.push_back(m_source.diagnose(m_source.place(node).offset, message));
    }

    /// An attribute's bytes; nothing without it.
    std::optional<std::string> attribute(pugi::xml_node node, const char* name)
    {
        const pugi::xml_attribute found = node.attribute(name);
        if (!found)
            return std::nullopt;
        std::optional<std::string> bytes = unescaped(found.value());
        if (!bytes)
            error(node, std::string("unknown escape in '") + name + "' (there are \\\\ \\\" \\n \\t \\x00)");
        else if (bytes->size() > qrb::kMaxStreamStringBytes)
            error(node, std::string("'") + name + "' is longer than " + std::to_string(qrb::kMaxStreamStringBytes) +
                            " bytes");
        return bytes.value_or("");
    }

    void checkAttributes(pugi::xml_node node, std::initializer_list<std::string_view> known)
    {
        for (const pugi::xml_attribute& found : node.attributes())
            if (std::find(known.begin(), known.end(), found.name()) == known.end())
                error(node, std::string("<") + node.name() + "> has no attribute '" + found.name() + "'");
    }

    /// Whether a child is an element; other than comments anything else is an error.
    bool isElement(pugi::xml_node child)
    {
        const bool isText = child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata;
        if (isText && !trimmed(child.value()).empty())
            error(child, std::string("a text has no place in <") + child.parent().name() + ">");
        return child.type() == pugi::node_element;
    }

    void noPlace(pugi::xml_node child)
    {
        error(child, std::string("<") + child.name() + "> has no place in <" + child.parent().name() + ">");
    }

    CScope scopeOf(pugi::xml_node node, const CScope& outer)
    {
        CScope own = attribute(node, "registry");
        return own ? own : outer;
    }

    void readList(pugi::xml_node node, const CScope& scope, product::CPresetFile& file)
    {
        checkAttributes(node, {"registry", "count"});
        bool hasBanks = false;
        for (const pugi::xml_node child : node.children()) {
            if (!isElement(child))
                continue;
            const bool isBank = std::string_view(child.name()) == "bank";
            if (!isBank && std::string_view(child.name()) != "preset") {
                noPlace(child);
            } else if (!file.banks.empty() && isBank != hasBanks) {
                error(child, "a list holds either banks or presets");
            } else if (isBank) {
                hasBanks = true;
                file.banks.push_back(readBank(child, scopeOf(child, scope)));
            } else {
                if (file.banks.empty())
                    file.banks.emplace_back();
                file.banks.front().presets.push_back(readPreset(child, scopeOf(child, scope)));
            }
        }
        if (const auto text = attribute(node, "count")) {
            const std::optional<std::int32_t> count = wholeNumber(*text);
            if (!count || *count > 0 || !file.banks.empty())
                error(node, "'count' is that of an empty list: 0 or less");
            file.emptyCount = count.value_or(0);
        }
    }

    product::CBank readBank(pugi::xml_node node, const CScope& scope)
    {
        checkAttributes(node, {"registry", "name"});
        product::CBank bank;
        bank.name = attribute(node, "name").value_or("");
        for (const pugi::xml_node child : node.children()) {
            if (!isElement(child))
                continue;
            if (std::string_view(child.name()) == "preset")
                bank.presets.push_back(readPreset(child, scopeOf(child, scope)));
            else
                noPlace(child);
        }
        return bank;
    }

    product::CPreset readPreset(pugi::xml_node node, const CScope& scope)
    {
        checkAttributes(node, {"registry", "name", "order"});
        product::CPreset preset;
        if (!node.attribute("name"))
            error(node, "the preset needs a name");
        preset.name = (scope ? *scope + ":" : std::string()) + attribute(node, "name").value_or("");
        if (preset.name.size() > qrb::kMaxStreamStringBytes)
            error(node, "the preset's name is too long");
        const std::size_t colon = preset.name.find(':');
        m_registry = colon == std::string::npos ? nullptr : m_params.registry(preset.name.substr(0, colon));
        const std::optional<std::string> order = attribute(node, "order");
        if (order && *order != "given")
            error(node, "'order' can only be \"given\"");
        m_isOrderGiven = order.has_value();
        m_keys.clear();
        readItems(node, "", preset, 0);
        if (!m_isOrderGiven)
            preset.sortItems();
        return preset;
    }

    void readItems(pugi::xml_node node, const std::string& prefix, product::CPreset& preset, int depth)
    {
        for (const pugi::xml_node child : node.children()) {
            if (isGivenUp())
                return;
            if (!isElement(child))
                continue;
            const std::string_view kind = child.name();
            if (kind != "section" && kind != "param" && kind != "raw") {
                noPlace(child);
                continue;
            }
            if (!child.attribute("path")) {
                error(child, std::string("<") + child.name() + "> needs a path");
                continue;
            }
            const std::string key = prefix + attribute(child, "path").value_or("");
            if (kind != "section") {
                readItem(child, key, preset);
            } else if (depth == kMaxDepth) {
                error(child, "too many sections in each other");
            } else {
                checkAttributes(child, {"path"});
                readItems(child, key + ".", preset, depth + 1);
            }
        }
    }

    void readItem(pugi::xml_node node, const std::string& key, product::CPreset& preset)
    {
        if (key.size() > qrb::kMaxStreamStringBytes)
            return error(node, "the path is too long");
        if (!m_isOrderGiven && !m_keys.insert(key).second)
            return error(node, "'" + escaped(key) + "' has a value already");
        std::optional<std::string> bytes =
            std::string_view(node.name()) == "raw" ? readRaw(node) : readParam(node, key);
        if (bytes)
            preset.items.push_back({key, std::move(*bytes)});
    }

    std::optional<std::string> readRaw(pugi::xml_node node)
    {
        checkAttributes(node, {"path"});
        std::optional<std::string> bytes = bytesOfHex(contentOf(node));
        if (!bytes)
            error(node, "<raw> holds pairs of hexadecimal digits");
        return bytes;
    }

    std::string contentOf(pugi::xml_node node)
    {
        std::string text;
        for (const pugi::xml_node child : node.children()) {
            if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata)
                text += child.value();
            else if (child.type() == pugi::node_element)
                noPlace(child);
        }
        return text;
    }

    std::optional<std::string> readParam(pugi::xml_node node, const std::string& key)
    {
        checkAttributes(node, {"path", "definition", "type", "size", "groups"});
        const qrb::CAudioParamInfo* const info = m_params.find(m_registry, key);
        CItemText item;
        if (!readShape(node, key, info, item))
            return std::nullopt;
        const bool isSkipped = info != nullptr && !m_params.isContent(*m_registry, key, *info);
        if (isSkipped && m_built.warnings.size() < kMaxErrors)
            m_built.warnings.push_back(
                m_source.diagnose(m_source.place(node).offset,
                                  "loading passes over '" + key + "': it is no preset content of " + m_registry->id));
        std::vector<pugi::xml_node> groups;
        if (!readGroups(node, item, groups))
            return std::nullopt;
        std::string problem;
        std::size_t badGroup = 0;
        std::optional<std::string> bytes = buildItem(item, info, problem, badGroup);
        if (!bytes)
            error(badGroup < groups.size() ? groups[badGroup] : node, "'" + escaped(key) + "': " + problem);
        return bytes;
    }

    bool readShape(pugi::xml_node node, const std::string& key, const qrb::CAudioParamInfo* info, CItemText& item)
    {
        const std::optional<std::string> definition = attribute(node, "definition");
        const std::optional<std::string> type = attribute(node, "type");
        const std::optional<std::string> size = attribute(node, "size");
        if (info == nullptr && (!definition || !type)) {
            error(node, unknownParam(key));
            return false;
        }
        item.definition = definition ? *definition : info->definitionPath.toUtf8();
        item.type = info != nullptr ? info->format.type : qrb::EAudioParamType::number;
        item.elementSize = info != nullptr ? info->format.elementSize : 1;
        if (type && *type != "number" && *type != "text" && *type != "raw")
            error(node, "'type' is number, text or raw");
        if (type)
            item.type = *type == "text"  ? qrb::EAudioParamType::text
                        : *type == "raw" ? qrb::EAudioParamType::raw
                                         : qrb::EAudioParamType::number;
        if (size)
            item.elementSize = wholeNumber(*size).value_or(0);
        if (!qrb::CAudioParamFormat{.elementSize = item.elementSize, .type = item.type}.isValid()) {
            error(node, "'size' is 1 to " + std::to_string(qrb::kAudioParamMaxElementSize) +
                            " for numbers and 1 for anything else");
            return false;
        }
        return true;
    }

    std::string unknownParam(const std::string& key) const
    {
        const std::string name = "'" + escaped(key) + "'";
        if (m_registry == nullptr)
            return "whose parameter " + name + " is cannot be told: the preset's registry is missing or unknown";
        std::set<std::string> keys;
        for (const CProductParams::CMember& member : m_params.members(*m_registry))
            keys.insert(member.key);
        const std::string nearest = qrbdoc::nearestName(key, keys);
        return m_registry->id + " has no parameter " + name +
               (nearest.empty() ? std::string(" (qrb-preset params lists all)") : "; is '" + nearest + "' meant?");
    }

    /// A group for the content, or one for each <group>.
    bool readGroups(pugi::xml_node node, CItemText& item, std::vector<pugi::xml_node>& nodes)
    {
        const bool hasGroups = node.child("group");
        if (const auto count = attribute(node, "groups")) {
            if (*count == "0" && !hasGroups && trimmed(contentOf(node)).empty())
                return true;
            error(node, "'groups' tells that there are none: it can only be 0, without any values");
            return false;
        }
        if (!hasGroups) {
            item.groups.push_back(contentOf(node));
            return true;
        }
        for (const pugi::xml_node child : node.children()) {
            if (!isElement(child))
                continue;
            if (std::string_view(child.name()) != "group") {
                noPlace(child);
                continue;
            }
            checkAttributes(child, {"index"});
            const std::optional<std::string> text = attribute(child, "index");
            const std::int32_t last = qrb::kAudioParamMaxGroups - 1;
            const auto next = static_cast<std::int32_t>(item.groups.size());
            const std::optional<std::int32_t> index = text ? wholeNumber(*text) : next;
            if (!index || *index < next || *index > last) {
                error(child, "a group's index is " + std::to_string(next) + " to " + std::to_string(last) + " here");
                return false;
            }
            item.groups.resize(static_cast<std::size_t>(*index)); // groups left out are empty: the defaults hold there
            nodes.resize(item.groups.size(), node);
            item.groups.push_back(contentOf(child));
            nodes.push_back(child);
        }
        return true;
    }

    qrbdoc::CSourceFile m_source;
    const CProductParams& m_params;
    CBuilt m_built;
    const CRegistry* m_registry = nullptr; ///< of the preset that is being read; null if the product has none such
    bool m_isOrderGiven = false;
    std::set<std::string> m_keys;
};

} // namespace

CBuilt buildText(std::string text, const std::string& path, const CProductParams& params)
{
    return CBuilder(std::move(text), path, params).build();
}

} // namespace qrbpreset
