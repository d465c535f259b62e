// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamInfo.h"
#include "Tools/QrbPreset/CItemText.h"
#include "Tools/QrbPreset/CProductParams.h"
#include "Tools/QrbPreset/PresetText.h"
#include "Tools/QrbPreset/TextEscape.h"

#include <algorithm>
#include <map>
#include <set>

namespace qrbpreset {

namespace {

constexpr std::size_t kHexPerLine = 96;

std::string idOf(const std::string& name)
{
    return name.substr(0, name.find(':'));
}

bool hasId(const std::string& name)
{
    return name.find(':') != std::string::npos;
}

/// What stands in front of the last "."; empty for a key at the top.
std::string sectionOf(const std::string& key)
{
    const std::size_t dot = key.rfind('.');
    return dot == std::string::npos ? std::string() : key.substr(0, dot);
}

class CPrinter {
public:
    explicit CPrinter(const CProductParams& params) : m_params(params) {}

    std::string print(const product::CPresetFile& file)
    {
        m_out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
        findCommonId(file);
        if (file.kind == product::EFileKind::preset)
            printPreset(file.banks.front().presets.front(), 0);
        if (file.kind == product::EFileKind::bank)
            printBank(file.banks.front(), 0);
        if (file.kind == product::EFileKind::list)
            printList(file);
        return m_out;
    }

private:
    void findCommonId(const product::CPresetFile& file)
    {
        std::set<std::string> ids;
        for (const product::CBank& bank : file.banks)
            for (const product::CPreset& preset : bank.presets) {
                m_hasCommonId = hasId(preset.name);
                ids.insert(m_hasCommonId ? idOf(preset.name) : "");
                if (!m_hasCommonId || ids.size() > 1) {
                    m_hasCommonId = false;
                    return;
                }
            }
        if (!ids.empty())
            m_commonId = *ids.begin();
    }

    void line(std::size_t depth, const std::string& text) { m_out += std::string(2 * depth, ' ') + text + "\n"; }

    std::string idAttribute(std::size_t depth) const
    {
        return depth == 0 && m_hasCommonId ? xmlAttribute("registry", escaped(m_commonId)) : std::string();
    }

    void printList(const product::CPresetFile& file)
    {
        const std::string count = file.emptyCount < 0 ? xmlAttribute("count", std::to_string(file.emptyCount)) : "";
        const std::string head = "<list" + count + idAttribute(0);
        if (file.banks.empty())
            return line(0, head + "/>");
        line(0, head + ">");
        if (file.banks.size() == 1 && file.banks[0].name.empty() && !file.banks[0].presets.empty())
            for (const product::CPreset& preset : file.banks[0].presets)
                printPreset(preset, 1);
        else
            for (const product::CBank& bank : file.banks)
                printBank(bank, 1);
        line(0, "</list>");
    }

    void printBank(const product::CBank& bank, std::size_t depth)
    {
        const std::string head = "<bank" + idAttribute(depth) + xmlAttribute("name", escaped(bank.name));
        if (bank.presets.empty())
            return line(depth, head + "/>");
        line(depth, head + ">");
        for (const product::CPreset& preset : bank.presets)
            printPreset(preset, depth + 1);
        line(depth, "</bank>");
    }

    void printPreset(const product::CPreset& preset, std::size_t depth)
    {
        std::string head = "<preset";
        std::string name = preset.name;
        m_registry = hasId(name) ? m_params.registry(idOf(name)) : nullptr;
        if (hasId(name)) {
            if (depth == 0 || !m_hasCommonId)
                head += xmlAttribute("registry", escaped(idOf(name)));
            name = name.substr(name.find(':') + 1);
        }
        head += xmlAttribute("name", escaped(name));
        product::CPreset grouped = bySections(preset);
        const bool isGiven = !isOrderOf(grouped, preset);
        if (isGiven)
            head += xmlAttribute("order", "given");
        if (preset.items.empty())
            return line(depth, head + "/>");
        line(depth, head + ">");
        std::string section;
        for (const product::CItem& item : isGiven ? preset.items : grouped.items) {
            const std::string next = isGiven ? std::string() : sectionOf(item.key);
            if (next != section && !section.empty())
                line(depth + 1, "</section>");
            if (next != section && !next.empty())
                line(depth + 1, "<section" + xmlAttribute("path", escaped(next)) + ">");
            section = next;
            printItem(item, item.key.substr(section.empty() ? 0 : section.size() + 1),
                      depth + (section.empty() ? 1 : 2));
        }
        if (!section.empty())
            line(depth + 1, "</section>");
        line(depth, "</preset>");
    }

    /// The items with those of one section side by side, the top's first.
    static product::CPreset bySections(const product::CPreset& preset)
    {
        std::map<std::string, std::size_t> rank{{"", 0}};
        for (const product::CItem& item : preset.items)
            rank.try_emplace(sectionOf(item.key), rank.size());
        product::CPreset grouped = preset;
        std::stable_sort(grouped.items.begin(), grouped.items.end(),
                         [&](const product::CItem& a, const product::CItem& b) {
                             return rank.at(sectionOf(a.key)) < rank.at(sectionOf(b.key));
                         });
        return grouped;
    }

    /// Whether the items, each there once, get the order of the file by being sorted.
    static bool isOrderOf(product::CPreset grouped, const product::CPreset& preset)
    {
        grouped.sortItems();
        std::set<std::string> keys;
        for (std::size_t i = 0; i < preset.items.size(); ++i)
            if (grouped.items[i].key != preset.items[i].key || !keys.insert(preset.items[i].key).second)
                return false;
        return true;
    }

    void printItem(const product::CItem& item, const std::string& shortKey, std::size_t depth)
    {
        const qrb::CAudioParamInfo* const info = m_params.find(m_registry, item.key);
        const std::string path = xmlAttribute("path", escaped(shortKey));
        const std::optional<CItemText> text = qrbpreset::printItem(item.bytes, info);
        if (!text)
            return printRaw(item.bytes, path, depth);
        std::string head = "<param" + path;
        if (info == nullptr || text->definition != info->definitionPath.toUtf8())
            head += xmlAttribute("definition", escaped(text->definition));
        if (info == nullptr || text->type != info->format.type)
            head += xmlAttribute("type", typeName(text->type));
        if (info == nullptr ? text->elementSize != 1 : text->elementSize != info->format.elementSize)
            head += xmlAttribute("size", std::to_string(text->elementSize));
        if (text->groups.empty())
            return line(depth, head + xmlAttribute("groups", "0") + "/>");
        if (text->groups.size() == 1)
            return line(depth, head + ">" + xmlText(text->groups[0]) + "</param>");
        line(depth, head + ">");
        for (const std::string& group : text->groups)
            line(depth + 1, group.empty() ? "<group/>" : "<group>" + xmlText(group) + "</group>");
        line(depth, "</param>");
    }

    static const char* typeName(qrb::EAudioParamType type)
    {
        return type == qrb::EAudioParamType::number ? "number" : type == qrb::EAudioParamType::text ? "text" : "raw";
    }

    void printRaw(const std::string& bytes, const std::string& path, std::size_t depth)
    {
        const std::string digits = hexText(bytes);
        if (digits.size() <= kHexPerLine)
            return line(depth, "<raw" + path + ">" + digits + "</raw>");
        line(depth, "<raw" + path + ">");
        for (std::size_t at = 0; at < digits.size(); at += kHexPerLine)
            line(depth + 1, digits.substr(at, kHexPerLine));
        line(depth, "</raw>");
    }

    const CProductParams& m_params;
    std::string m_out;
    bool m_hasCommonId = false;
    std::string m_commonId;
    const CRegistry* m_registry = nullptr;
};

} // namespace

std::string printText(const product::CPresetFile& file, const CProductParams& params)
{
    return CPrinter(params).print(file);
}

} // namespace qrbpreset
