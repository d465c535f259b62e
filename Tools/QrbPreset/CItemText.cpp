// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/QrbPreset/CItemText.h"

#include "Audio/CAudioParamCells.h"
#include "Audio/CAudioParamInfo.h"
#include "Audio/CAudioParamUpdate.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/CWriteSeqBuffer.h"
#include "Tools/Product/CPayloadReader.h"
#include "Tools/QrbPreset/CNumberText.h"
#include "Tools/QrbPreset/CValueList.h"
#include "Tools/QrbPreset/TextEscape.h"

namespace qrbpreset {

namespace {

using qrb::EAudioParamType;

constexpr std::string_view kHex = "hex:";

/// The description, if the values have its shape.
const qrb::CAudioParamInfo* fitting(const qrb::CAudioParamInfo* info, const CItemText& item)
{
    const bool fits = info != nullptr && info->format.type == item.type && info->format.elementSize == item.elementSize;
    return fits ? info : nullptr;
}

/// False if the bytes are not those of a storage of any shape.
bool loadStorage(std::string_view bytes, CItemText& item, qrb::CAudioParamStorage& storage)
{
    product::CPayloadReader head(bytes);
    (void)head.readInt();
    qrb::CAudioParamFormat format;
    format.elementSize = head.readInt();
    format.type = static_cast<EAudioParamType>(head.readInt());
    if (!head.isGood() || !format.isValid())
        return false;
    item.type = format.type;
    item.elementSize = format.elementSize;
    storage.setFormat(format);
    qrb::CMemoryReaderStatic in({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    return !storage.load(in);
}

std::string shownItem(const qrb::CAudioParamStorage& storage, double cell)
{
    const std::int32_t key = qrb::audioParamKey(cell);
    if (storage.format().type == EAudioParamType::text)
        return quoted(storage.data().text(key).toUtf8());
    const std::span<const std::uint8_t> bytes = storage.data().raw(key);
    return std::string(kHex) + hexText({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

std::string shownGroup(const qrb::CAudioParamStorage& storage, std::int32_t group, const qrb::CAudioParamInfo* info)
{
    std::string text;
    const std::span<const double> cells = storage.cells(group);
    const auto size = static_cast<std::size_t>(storage.format().elementSize);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        text += i == 0 ? "" : i % size == 0 ? ", " : " | ";
        if (storage.format().hasItems()) {
            text += shownItem(storage, cells[i]);
            continue;
        }
        std::string entry = CNumberText(info, static_cast<int>(i % size)).shown(cells[i]);
        if (entry.find_first_of(",|\"\\") != std::string::npos) {
            const std::size_t exact = entry.find(" =");
            entry = quoted(entry.substr(0, exact)) + (exact == std::string::npos ? "" : entry.substr(exact));
        }
        text += entry;
    }
    return text;
}

/// Fills a storage from the lists of values.
class CItemBuilder {
public:
    CItemBuilder(const CItemText& item, const qrb::CAudioParamInfo* info) : m_item(item), m_info(fitting(info, item))
    {
        m_format = {.elementSize = item.elementSize, .type = item.type};
    }

    bool build(qrb::CAudioParamStorage& storage, std::string& error, std::size_t& errorGroup)
    {
        storage.setFormat(m_format);
        for (std::size_t group = 0; group < m_item.groups.size(); ++group) {
            if (addGroup(storage, group, error))
                continue;
            errorGroup = group;
            return false;
        }
        return true;
    }

private:
    bool addGroup(qrb::CAudioParamStorage& storage, std::size_t group, std::string& error)
    {
        const EListKind kind = m_format.hasItems()        ? EListKind::items
                               : m_format.elementSize > 1 ? EListKind::components
                                                          : EListKind::numbers;
        std::vector<std::vector<CEntry>> elements;
        if (!splitValues(m_item.groups[group], kind, elements, error))
            return false;
        if (elements.size() > static_cast<std::size_t>(qrb::kAudioParamMaxElements)) {
            error = "more than " + std::to_string(qrb::kAudioParamMaxElements) + " values";
            return false;
        }
        m_cells.clear();
        m_items.clear();
        for (std::size_t i = 0; i < elements.size(); ++i)
            if (!addElement(static_cast<std::int32_t>(i), elements[i], error))
                return false;
        qrb::CAudioParamUpdate record;
        // The first group makes the storage one that holds data.
        record.group = group == 0 ? qrb::kAudioParamTemplateGroup : static_cast<std::int32_t>(group);
        record.elementCount = static_cast<std::int32_t>(elements.size());
        record.isToEnd = true;
        record.format = m_format;
        record.values = m_cells.data();
        record.data = &m_items;
        if (storage.apply(record))
            return true;
        error = "at most " + std::to_string(qrb::kAudioParamMaxGroups) + " groups can be";
        return false;
    }

    bool addElement(std::int32_t element, const std::vector<CEntry>& entries, std::string& error)
    {
        if (entries.size() != static_cast<std::size_t>(m_format.elementSize)) {
            error = "value " + std::to_string(element + 1) + " has " + std::to_string(entries.size()) +
                    " components in place of " + std::to_string(m_format.elementSize) + " (\"|\" separates them)";
            return false;
        }
        for (std::size_t component = 0; component < entries.size(); ++component) {
            const CEntry& entry = entries[component];
            double cell = 0.0;
            if (entry.isDefault() && m_info == nullptr) {
                error = "* stands for the default, which a parameter that the product lacks does not have";
                return false;
            }
            if (!(entry.isDefault() ? takeDefault(element, static_cast<int>(component), cell)
                                    : takeEntry(entry, static_cast<int>(component), cell, error)))
                return false;
            m_cells.append(cell);
        }
        return true;
    }

    bool takeDefault(std::int32_t element, int component, double& cell)
    {
        const std::span<const double> values = m_info->defaults.defaultElement(element);
        cell = m_format.hasItems()
                   ? m_items.addCopy(&m_info->defaults.data(), qrb::audioParamKey(values.empty() ? 0.0 : values[0]),
                                     m_format.type)
                   : m_info->defaultValue(element, component);
        return true;
    }

    bool takeEntry(const CEntry& entry, int component, double& cell, std::string& error)
    {
        if (m_format.type == EAudioParamType::text) {
            cell = m_items.addText(qrb::CString::fromUtf8(entry.text));
            return true;
        }
        if (m_format.type == EAudioParamType::raw) {
            const std::optional<std::string> bytes =
                entry.text.starts_with(kHex) ? bytesOfHex(entry.text.substr(kHex.size())) : std::nullopt;
            if (!bytes) {
                error = "a block of bytes is written as hex: and pairs of hexadecimal digits";
                return false;
            }
            cell = m_items.addRaw({reinterpret_cast<const std::uint8_t*>(bytes->data()), bytes->size()});
            return true;
        }
        const CNumberText number(m_info, component);
        if (!entry.exact)
            return number.read(entry.text, cell, error);
        const std::optional<double> exact = exactValue(*entry.exact);
        if (!exact)
            error = "'" + *entry.exact + "' behind = is no number";
        else if (!entry.text.empty() && !number.isShownAs(entry.text, *exact))
            error = "'" + entry.text + "' and =" + *entry.exact + " are not the same (" + number.shown(*exact) +
                    "); leave one of them out";
        if (exact)
            cell = *exact;
        return error.empty();
    }

    const CItemText& m_item;
    const qrb::CAudioParamInfo* m_info;
    qrb::CAudioParamFormat m_format;
    qrb::CArray<double, 8> m_cells;
    qrb::CAudioParamData m_items;
};

} // namespace

std::optional<CItemText> printItem(std::string_view bytes, const qrb::CAudioParamInfo* info)
{
    product::CPayloadReader in(bytes);
    CItemText item;
    item.definition = in.readText();
    qrb::CAudioParamStorage storage;
    if (!in.isGood() || !loadStorage(in.rest(), item, storage))
        return std::nullopt;
    for (std::int32_t group = 0; group < storage.groupCount(); ++group)
        item.groups.push_back(shownGroup(storage, group, fitting(info, item)));
    std::string error;
    std::size_t errorGroup = 0;
    return buildItem(item, info, error, errorGroup) == bytes ? std::optional(std::move(item)) : std::nullopt;
}

std::optional<std::string> buildItem(const CItemText& item, const qrb::CAudioParamInfo* info, std::string& error,
                                     std::size_t& errorGroup)
{
    qrb::CAudioParamStorage storage;
    if (!CItemBuilder(item, info).build(storage, error, errorGroup))
        return std::nullopt;
    std::string out;
    product::appendBlock(out, item.definition);
    qrb::CWriteSeqBuffer written;
    if (storage.save(written))
        return std::nullopt;
    qrb::CByteArray bytes;
    written.getContiguous(bytes);
    return out.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

} // namespace qrbpreset
