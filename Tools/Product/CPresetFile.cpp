// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Product/CPresetFile.h"

#include "Audio/Presets/CAudioPresetBudget.h"
#include "Audio/Presets/CAudioPresetList.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/CWriteSeqBuffer.h"
#include "Tools/Product/CPayloadReader.h"

#include <algorithm>
#include <utility>

namespace product {

namespace {

constexpr std::pair<EFileKind, std::uint32_t> kChunks[] = {{EFileKind::preset, qrb::kPresetChunk},
                                                           {EFileKind::bank, qrb::kPresetBankChunk},
                                                           {EFileKind::list, qrb::kPresetListChunk}};

CPreset readPreset(CPayloadReader& in, qrb::CAudioPresetBudget& budget)
{
    CPreset preset;
    preset.name = in.readText();
    const std::int32_t count = in.readInt();
    if (count < 0)
        in.fail("a preset of " + std::to_string(count) + " parameters cannot be");
    for (std::int32_t i = 0; i < count && in.isGood(); ++i) {
        if (!budget.take())
            in.fail("there are too many parameters");
        CItem item;
        item.key = in.readText();
        item.bytes = in.readBlock();
        preset.items.push_back(std::move(item));
    }
    return preset;
}

CBank readBank(CPayloadReader& in, qrb::CAudioPresetBudget& budget)
{
    CBank bank;
    bank.name = in.readText();
    const std::int32_t count = in.readInt();
    if (count < 0)
        in.fail("a bank of " + std::to_string(count) + " presets cannot be");
    for (std::int32_t i = 0; i < count && in.isGood(); ++i) {
        if (!budget.take())
            in.fail("there are too many presets");
        bank.presets.push_back(readPreset(in, budget));
    }
    return bank;
}

void readContent(CPayloadReader& in, CPresetFile& out)
{
    qrb::CAudioPresetBudget budget;
    if (out.kind == EFileKind::preset)
        out.banks.emplace_back().presets.push_back(readPreset(in, budget));
    if (out.kind == EFileKind::bank)
        out.banks.push_back(readBank(in, budget));
    if (out.kind == EFileKind::list) {
        const std::int32_t count = in.readInt();
        out.emptyCount = std::min(count, 0);
        for (std::int32_t i = 0; i < count && in.isGood(); ++i) {
            if (!budget.take())
                in.fail("there are too many banks");
            out.banks.push_back(readBank(in, budget));
        }
    }
    if (in.isGood() && !in.rest().empty())
        in.fail(std::to_string(in.rest().size()) + " bytes follow behind the end");
}

void appendPreset(std::string& out, const CPreset& preset)
{
    appendBlock(out, preset.name);
    appendInt(out, static_cast<std::int32_t>(preset.items.size()));
    for (const CItem& item : preset.items) {
        appendBlock(out, item.key);
        appendBlock(out, item.bytes);
    }
}

void appendBank(std::string& out, const CBank& bank)
{
    appendBlock(out, bank.name);
    appendInt(out, static_cast<std::int32_t>(bank.presets.size()));
    for (const CPreset& preset : bank.presets)
        appendPreset(out, preset);
}

std::string contentOf(const CPresetFile& file)
{
    std::string content;
    if (file.kind == EFileKind::preset)
        appendPreset(content, file.banks.front().presets.front());
    if (file.kind == EFileKind::list)
        appendInt(content, file.banks.empty() ? file.emptyCount : static_cast<std::int32_t>(file.banks.size()));
    if (file.kind != EFileKind::preset)
        for (const CBank& bank : file.banks)
            appendBank(content, bank);
    return content;
}

std::span<const std::uint8_t> asBytes(std::string_view text)
{
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

} // namespace

void CPreset::sortItems()
{
    std::vector<std::pair<qrb::CString, CItem>> keyed;
    for (CItem& item : items)
        keyed.emplace_back(qrb::CString::fromUtf8(item.key), std::move(item));
    std::stable_sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::transform(keyed.begin(), keyed.end(), items.begin(), [](auto& pair) { return std::move(pair.second); });
}

bool readPresetFile(std::string_view bytes, CPresetFile& out, std::string& error)
{
    CPayloadReader head(bytes);
    const auto id = static_cast<std::uint32_t>(head.readInt());
    const auto known =
        std::find_if(std::begin(kChunks), std::end(kChunks), [&](const auto& row) { return row.second == id; });
    if (!head.isGood() || known == std::end(kChunks)) {
        error = "this is no file of presets (it begins with none of aprs, abnk, alst)";
        return false;
    }
    const auto size = static_cast<std::uint32_t>(head.readInt());
    if (head.isGood() && size > qrb::kMaxChunkBytes) {
        error = "its content of " + std::to_string(size) + " bytes is above the allowed " +
                std::to_string(qrb::kMaxChunkBytes);
        return false;
    }
    qrb::CMemoryReaderStatic in(asBytes(bytes));
    qrb::CByteArray content;
    if (const qrb::CErrorPtr failed = in.readCompressedData(content, id)) {
        error = "its packed data is damaged or ends early";
        return false;
    }
    CPresetFile file;
    file.kind = known->first;
    CPayloadReader reader({reinterpret_cast<const char*>(content.data()), content.size()});
    readContent(reader, file);
    if (!reader.isGood()) {
        error = "its content is damaged: " + reader.error();
        return false;
    }
    out = std::move(file);
    return true;
}

bool writePresetFile(const CPresetFile& file, std::string& out, std::string& error)
{
    const std::string content = contentOf(file);
    const auto* const chunk =
        std::find_if(std::begin(kChunks), std::end(kChunks), [&](const auto& row) { return row.first == file.kind; });
    qrb::CWriteSeqBuffer packed;
    if (const qrb::CErrorPtr failed = packed.writeCompressedData(asBytes(content), chunk->second)) {
        error = "a content of " + std::to_string(content.size()) + " bytes is above the allowed " +
                std::to_string(qrb::kMaxChunkBytes);
        return false;
    }
    qrb::CByteArray bytes;
    packed.getContiguous(bytes);
    out.assign(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return true;
}

} // namespace product
