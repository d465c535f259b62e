// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Audio/Presets/CPresetWorld.h"

#include "Audio/AudioCreators.h"
#include "Audio/CAudioParamDef.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/CWriteSeqBuffer.h"

#include <bit>

namespace qrb {

namespace {

constexpr const char* kShared = R"(<root>
    <core:object name="cvt"><audio:cvt-real name="real" decimals="2"/><audio:cvt-text name="text"/></core:object>
    <core:object name="audio"><core:object name="modMain">
        <audio:param name="gain" element-size="1" converter="cvt.real" min-values="0" max-values="1" def-values="0.5"
            is-storable="true" is-single-group="true" is-single-element="true"/>
        <audio:param name="list" element-size="1" converter="cvt.real" min-values="0" max-values="9" def-values="1,2,3;4"
            is-storable="true"/>
        <audio:param name="keep" element-size="1" converter="cvt.real" min-values="0" max-values="9" def-values="7"
            is-persistent="true" is-single-group="true" is-single-element="true"/>
        <audio:param name="view" element-size="1" converter="cvt.real" min-values="0" max-values="9" def-values="8"
            is-global="true"/>
        <audio:param name="late" element-size="1" converter="cvt.real" min-values="0" max-values="9" def-values="6"
            is-storable="true"/>
        <audio:param name="instance-name" element-size="1" data-type="string" converter="cvt.text" def-values=" "
            is-persistent="true" is-single-group="true"/>
        <audio:param name="preset-name" element-size="1" data-type="string" converter="cvt.text" def-values="Default"
            is-storable="true" is-single-group="true" is-single-element="true"/>
        <audio:param name="mode" element-size="1" converter="cvt.real" min-values="0" max-values="9" def-values="0,1"
            is-storable="true" param-registry="plugin.modes"/>
        <core:object name="io-params">
            <audio:param name="group-names" element-size="1" data-type="string" converter="cvt.text"
                def-values="MAIN,G2,Rear" is-storable="true" is-single-group="true"/></core:object>
        <core:object name="gate-params">
            <audio:param name="attack" element-size="1" converter="cvt.real" min-values="0" max-values="9"
                def-values="2" is-storable="true"/>
            <audio:param name="mode-name" element-size="1" data-type="string" converter="cvt.text" def-values="Default"
                is-storable="true"/></core:object>
        <core:object name="mode-params">
            <audio:param name="drive" element-size="1" converter="cvt.real" min-values="0" max-values="9"
                def-values="5" is-storable="true"/>
            <audio:param name="tone" element-size="1" converter="cvt.real" min-values="0" max-values="9"
                def-values="4" is-storable="true"/></core:object>
    </core:object></core:object></root>)";

constexpr const char* kRegistry = R"(<audio:param-registry param-collector="^params" param-undo="^undo"
    group-names-param="plugin.modMain.io-params.group-names" def-name-remap="plugin=audio" )";

std::string instanceText()
{
    const std::string registry = kRegistry;
    return R"(<root><core:object name="plugin"><audio:audio-env name="env"/>
        <audio:param-collector name="params" env="^env"/>
        <test:undo name="undo" param-collector="^params" undo-count-max="32"/>)" +
           registry + R"(name="io" hierarchy="plugin.modMain.io-params" id="QBIO" preset-naming="Routing preset"/>)" +
           registry + R"(name="master" hierarchy="plugin.modMain" id="main" preset-naming="Master preset"
               is-master="true" file="Factory.cbf" preset-name-param="plugin.modMain.preset-name"/>)" +
           registry + R"(name="gate" hierarchy="plugin.modMain.gate-params." id="maing"
               preset-naming="Gate mode preset" preset-name-param="plugin.modMain.gate-params.mode-name"/>)" +
           registry + R"(name="modes" hierarchy="plugin.modMain.mode-params" id="MODE" preset-naming="Mode preset"
               is-enumerated="true" is-element-enum="true" store-name="modes"/></core:object></root>)";
}

constexpr const char* kNames[] = {"gain",
                                  "list",
                                  "keep",
                                  "view",
                                  "instance-name",
                                  "preset-name",
                                  "mode",
                                  "io-params.group-names",
                                  "gate-params.attack",
                                  "gate-params.mode-name",
                                  "mode-params.drive",
                                  "mode-params.tone"};

CTestModuleOptions moduleOptions(CTempFolders& folders)
{
    static constexpr CCreatorRow kRows[] = {creatorRow<CTestUndo>("test:undo")};
    return {{audioCreators(), kRows}, &folders};
}

CObject& buildInstance(CTestModule& module, const CPresetWorld::COptions& options)
{
    if (!options.factory.empty())
        module.addResource("Factory.cbf", options.factory);
    if (!options.modes.empty())
        module.addResource("AppDataLocal_modes", options.modes);
    if (!options.defaultPreset.empty())
        module.addResource("AppDataLocal_default-preset", options.defaultPreset);
    return module.loadRoot(instanceText());
}

template <class T>
T& find(CObject& root, const char* path)
{
    return dynamic_cast<T&>(CTestModule::find(root, path));
}

} // namespace

std::string CTestUndo::text() const
{
    CArray<CString> labels;
    std::int32_t position = 0;
    getHistory(labels, position);
    std::string joined;
    for (const CString& label : labels)
        joined += label.toUtf8() + "|";
    return joined + std::to_string(position);
}

CPresetWorld::CPresetWorld(const COptions& options)
    : m_module(kShared, moduleOptions(m_folders)), m_root(buildInstance(m_module, options)),
      params(find<CAudioParamCollector>(m_root, "plugin.params")), undo(find<CTestUndo>(m_root, "plugin.undo")),
      master(find<CAudioParamRegistry>(m_root, "plugin.master")),
      gate(find<CAudioParamRegistry>(m_root, "plugin.gate")), io(find<CAudioParamRegistry>(m_root, "plugin.io")),
      modes(find<CAudioParamRegistry>(m_root, "plugin.modes"))
{
    for (const char* const name : kNames)
        param(name).bindInfo(m_module.shared<CAudioParamDef>((std::string("audio.modMain.") + name).c_str()).info(),
                             nullptr, {nullptr, true});
    params.completeRegistries();
    params.flushQueue();
    undo.changeCount = 0;
}

CAudioParam& CPresetWorld::param(const char* name)
{
    return params.getParam(CString("plugin.modMain.") + name);
}

void CPresetWorld::set(const char* name, double value, int group, int element, CAudioParamUndoEntry* entry)
{
    params.tellHandChange(param(name), group, {.undo = entry});
    param(name).setElement(group, element, value, nullptr, {.undo = entry});
}

void CPresetWorld::gesture(const char* label, const char* name, double value, int group, int element, int mergeTag)
{
    auto entry = std::make_unique<CAudioParamUndoEntry>(label);
    entry->isMerging = mergeTag >= 0;
    entry->mergeTag = mergeTag;
    set(name, value, group, element, entry.get());
    undo.submit(std::move(entry));
}

CParamState CPresetWorld::state()
{
    CParamState state;
    CArray<CAudioParam*> all;
    params.listParams(all);
    const CAudioParamGuard guard(params);
    for (const CAudioParam* const bound : all) {
        auto& groups = state[bound->path().toUtf8()];
        const CAudioParamStorage& values = bound->editStorage(guard);
        for (int group = 0; group < values.groupCount(); ++group) {
            auto& cells = groups.emplace_back();
            for (int i = 0; i < static_cast<int>(values.cells(group).size()); ++i)
                cells.push_back(bound->info()->format.hasItems()
                                    ? values.text(group, i).toUtf8()
                                    : std::to_string(std::bit_cast<std::uint64_t>(values.value(group, i))));
        }
        while (!groups.empty() && groups.back().empty())
            groups.pop_back();
    }
    return state;
}

std::string CPresetWorld::activate(CAudioParamRegistry& registry, const CAudioPreset& preset, int group,
                                   const void* source)
{
    const std::vector<std::uint8_t> bytes = savedBytes(preset);
    CMemoryReaderStatic in(bytes);
    return errorText(registry.activatePreset(in, source, group));
}

std::vector<std::string> CPresetWorld::names(bool isFactory)
{
    CArray<CString> names;
    std::int32_t current = 0;
    master.getPresetNames(isFactory, names, current);
    std::vector<std::string> texts;
    for (const CString& name : names)
        texts.push_back(name.toUtf8());
    texts.push_back(std::to_string(current));
    return texts;
}

static std::vector<std::uint8_t> contents(const CWriteSeqBuffer& out)
{
    CByteArray bytes;
    out.getContiguous(bytes);
    return {bytes.begin(), bytes.end()};
}

template <class T>
std::vector<std::uint8_t> savedBytes(const T& what)
{
    CWriteSeqBuffer out;
    EXPECT_FALSE(what.save(out));
    return contents(out);
}
template std::vector<std::uint8_t> savedBytes(const CAudioPreset&);
template std::vector<std::uint8_t> savedBytes(const CAudioPresetBank&);
template std::vector<std::uint8_t> savedBytes(const CAudioPresetList&);

std::vector<std::uint8_t> chunked(const std::vector<std::uint8_t>& payload, std::uint32_t id)
{
    CWriteSeqBuffer out;
    EXPECT_FALSE(out.writeCompressedData(payload, id));
    return contents(out);
}

CByteArray numberBlob(const std::vector<std::vector<double>>& groups)
{
    CWriteSeqBuffer out;
    EXPECT_FALSE(out.writeString("any"));
    for (const int field : {1, 1, 0, static_cast<int>(groups.size())})
        EXPECT_FALSE(out.writeInt32(field));
    for (const std::vector<double>& group : groups) {
        EXPECT_FALSE(out.writeInt32(static_cast<int>(group.size())));
        for (const double value : group)
            EXPECT_FALSE(out.writeDouble(value));
    }
    CByteArray bytes;
    out.getContiguous(bytes);
    return bytes;
}

CAudioPreset numberPreset(const char* name, const std::map<std::string, double>& values)
{
    CAudioPreset preset;
    preset.name = name;
    for (const auto& [key, value] : values)
        preset.items[CString(key)] = numberBlob({{value}});
    return preset;
}

} // namespace qrb
