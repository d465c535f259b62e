// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Product/CPresetRig.h"

#include "Audio/Presets/CAudioPresetList.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/CWriteSeqBuffer.h"

#include <algorithm>
#include <bit>
#include <gtest/gtest.h>
#include <productResources.h>

using namespace qrb;

namespace {

const std::string kRoot = "plugin.modMain.";

std::vector<std::uint8_t> bytesOf(const CWriteSeqBuffer& out)
{
    CByteArray bytes;
    out.getContiguous(bytes);
    return {bytes.begin(), bytes.end()};
}

template <class T>
std::vector<std::uint8_t> chunkOf(const T& content, std::uint32_t id)
{
    CWriteSeqBuffer payload;
    EXPECT_FALSE(content.save(payload));
    CWriteSeqBuffer out;
    EXPECT_FALSE(out.writeCompressedData(bytesOf(payload), id));
    return bytesOf(out);
}

/// What CAudioParam::save() writes.
CByteArray savedParam(const CPlainGroups& groups)
{
    CAudioParamStorage storage;
    const bool isText = std::ranges::any_of(groups, [](const CPlainGroup& group) {
        return std::ranges::any_of(group, [](const CPlainCell& cell) { return !cell.text.empty(); });
    });
    CAudioParamFormat format;
    format.type = isText ? EAudioParamType::text : EAudioParamType::number;
    CAudioParamUpdate record;
    record.group = kAudioParamTemplateGroup;
    record.format = format;
    (void)storage.apply(record);
    for (std::size_t group = 0; group < groups.size(); ++group) {
        CAudioParamData items;
        CArray<double, 4> cells;
        for (const CPlainCell& cell : groups[group])
            cells.append(isText ? double(items.addText(CString::fromUtf8(cell.text))) : cell.number);
        record.group = static_cast<std::int32_t>(group);
        record.elementCount = static_cast<std::int32_t>(cells.size());
        record.values = cells.data();
        record.data = &items;
        EXPECT_TRUE(storage.apply(record));
    }
    CWriteSeqBuffer out;
    EXPECT_FALSE(out.writeString("any"));
    EXPECT_FALSE(storage.save(out));
    CByteArray bytes;
    out.getContiguous(bytes);
    return bytes;
}

/// What the test puts in place of the product's own.
std::map<std::string, std::vector<std::uint8_t>> ownFiles()
{
    CAudioPresetBank bank;
    for (int i = 0; i < CPresetRig::kPrograms; ++i)
        bank.presets.append(plainPreset(CPresetRig::programName(i), CPresetRig::programState(i)));
    CAudioPresetList modes;
    modes.banks.emplace();
    for (int i = 0; i < CPresetRig::kModes; ++i)
        modes.banks[0].presets.append(plainPreset("QBXT:Mode", CPresetRig::modeState(i), CPresetRig::kModePrefix));
    return {{"FactoryROM.cbf", chunkOf(bank, kPresetBankChunk)},
            {"AppDataLocal_xotube-presets", chunkOf(modes, kPresetListChunk)}};
}

CPlainGroups numbers(const std::vector<double>& values)
{
    CPlainGroups groups(1);
    for (const double value : values)
        groups[0].push_back({value, {}});
    return groups;
}

} // namespace

bool CPlainCell::operator==(const CPlainCell& other) const
{
    return std::bit_cast<std::uint64_t>(number) == std::bit_cast<std::uint64_t>(other.number) && text == other.text;
}

const CPlainGroup& groupOf(const CPlainGroups& groups, int group)
{
    static const CPlainGroup kNone;
    return static_cast<std::size_t>(group) < groups.size() ? groups[static_cast<std::size_t>(group)] : kNone;
}

CPlainGroups trimmed(CPlainGroups groups)
{
    while (!groups.empty() && groups.back().empty())
        groups.pop_back();
    return groups;
}

CPresetRig::CPresetRig(EContent content)
{
    product::CDataFiles files{{productResources()}, {}};
    if (content == EContent::own)
        files.read = ownFiles();
    std::string error;
    m_module = std::make_unique<product::CDocumentModule>(std::move(files), error);
    EXPECT_EQ(error, "");
    m_instance = std::make_unique<render::CRenderInstance>();
    EXPECT_FALSE(m_instance->init());
}

CPresetRig::~CPresetRig() = default;

std::string CPresetRig::programName(int index)
{
    return "k7rw:Program " + std::to_string(index);
}

CPlainState CPresetRig::programState(int index)
{
    CPlainState state;
    state["modThumpcraft.outgain"] = numbers({0.5 + 0.25 * index});
    state["modThumpcraft.sat-mode"] = numbers({index % kModes / 1.0, 1.0, 2.0});
    state["bypass-enable"] = numbers({index % 2 / 1.0});
    return state;
}

CPlainState CPresetRig::modeState(int index)
{
    CPlainState state;
    state[std::string(kModePrefix) + "inbias"] = numbers({0.125 * index});
    if (index > 0)
        state[std::string(kModePrefix) + "knee1"] = numbers({2.0 * index, 9.0});
    if (index > 1)
        state[std::string(kModePrefix) + "mode-name"] = {{{0.0, "Mode " + std::to_string(index)}}};
    return state;
}

CAudioParam& CPresetRig::param(const std::string& path)
{
    return params().getParam(CString::fromUtf8(kRoot + path));
}

CAudioParamRegistry& CPresetRig::registry(const std::string& name)
{
    return *params().findRegistry(CString::fromUtf8("plugin." + name));
}

CAudioParamUndo& CPresetRig::undo()
{
    return dynamic_cast<CAudioParamUndo&>(*instance().root().findObject("plugin.interface-base"));
}

std::vector<std::string> CPresetRig::contentPaths()
{
    CArray<CAudioParam*> all;
    params().listParams(all);
    std::vector<std::string> paths;
    for (const CAudioParam* const each : all)
        if (each->isBound() && (each->info()->isStorable || each->info()->isPersistent))
            paths.push_back(each->path().toUtf8().substr(kRoot.size()));
    return paths;
}

CPlainGroups CPresetRig::groupsOf(const CAudioParamStorage& storage)
{
    CPlainGroups groups;
    for (int group = 0; group < storage.groupCount(); ++group) {
        CPlainGroup& cells = groups.emplace_back();
        for (const double cell : storage.cells(group))
            cells.push_back(storage.format().hasItems()
                                ? CPlainCell{0.0, storage.data().text(static_cast<std::int32_t>(cell)).toUtf8()}
                                : CPlainCell{cell, {}});
    }
    return groups;
}

CPlainState CPresetRig::state(const std::vector<std::string>& paths)
{
    CPlainState state;
    const CAudioParamGuard guard(params());
    for (const std::string& path : paths)
        state[path] = trimmed(groupsOf(param(path).editStorage(guard)));
    return state;
}

CPlainCell CPresetRig::randomCell(const std::string& path, std::mt19937& random)
{
    const CAudioParamInfo& info = *param(path).info();
    EXPECT_EQ(info.format.elementSize, 1) << path;
    if (info.format.hasItems())
        return {0.0, "Nämé " + std::to_string(random() % 1000)};
    const double low = std::min(info.components[0].min, info.components[0].max);
    const double high = std::max(info.components[0].min, info.components[0].max);
    const double value = low + (high - low) * (static_cast<double>(random()) / 4294967296.0);
    // Saturator modes that exist, and some that do not.
    return {info.registryPath.empty() ? value : static_cast<double>(random() % (kModes + 2)), {}};
}

void CPresetRig::set(const std::string& path, int group, int element, const CPlainCell& cell,
                     CAudioParamUndoEntry* entry)
{
    CAudioParam& changed = param(path);
    const CAudioParamRoute route{.undo = entry};
    params().tellHandChange(changed, group, route);
    if (changed.info()->format.hasItems())
        EXPECT_TRUE(changed.setString(group, element, CString::fromUtf8(cell.text), nullptr, route));
    else
        EXPECT_TRUE(changed.setElement(group, element, cell.number, nullptr, route));
}

void CPresetRig::randomize(std::mt19937& random)
{
    for (const std::string& path : contentPaths()) {
        // Modes are selected; what they hold is no content of the whole.
        if (path.starts_with(kModePrefix))
            continue;
        const CAudioParamFormat& format = param(path).info()->format;
        const int groups = format.isSingleGroup ? 1 : 1 + static_cast<int>(random() % 8);
        for (int group = 0; group < groups; ++group)
            for (int count = format.isSingleElement ? 1 : static_cast<int>(random() % 4); count > 0; --count)
                set(path, group, format.isSingleElement ? 0 : static_cast<int>(random() % 8), randomCell(path, random));
    }
}

int CPresetRig::programCount()
{
    CArray<CString> names;
    std::int32_t current = 0;
    master().getPresetNames(false, names, current);
    return static_cast<int>(names.size());
}

std::vector<std::uint8_t> CPresetRig::saveState()
{
    CWriteSeqBuffer out;
    EXPECT_FALSE(instance().saveState(out));
    return bytesOf(out);
}

std::string CPresetRig::loadState(const std::vector<std::uint8_t>& bytes)
{
    CMemoryReaderStatic in(bytes);
    const CErrorPtr error = instance().loadState(in);
    return error ? error->text().toUtf8() : std::string();
}

CAudioPreset plainPreset(const std::string& name, const CPlainState& state, const std::string& prefix)
{
    CAudioPreset preset;
    preset.name = CString::fromUtf8(name);
    for (const auto& [path, groups] : state)
        preset.items[CString::fromUtf8(path.substr(prefix.size()))] = savedParam(groups);
    return preset;
}
