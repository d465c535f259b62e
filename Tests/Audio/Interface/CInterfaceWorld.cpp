// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Audio/Interface/CInterfaceWorld.h"

#include "Audio/AudioCreators.h"
#include "Audio/CAudioParamDef.h"
#include "Core/CApplication.h"
#include "Tests/Audio/Presets/CPresetWorld.h"

#include <utility>

namespace qrb {

namespace {

constexpr const char* kShared = R"(<root>
    <core:object name="cvt"><audio:cvt-real name="real" decimals="2"/><audio:cvt-text name="text"/></core:object>
    <core:object name="audio">
        <audio:param name="param-enable-viz" element-size="1" converter="cvt.real" min-values="0" max-values="1"
            def-values="0" is-global="true" is-single-group="true" is-single-element="true"/>
        <core:object name="modMain">
        <audio:param name="gain" element-size="1" converter="cvt.real" min-values="0" max-values="1" def-values="0.5"
            is-storable="true" is-single-group="true" is-single-element="true"/>
        <audio:param name="list" element-size="1" converter="cvt.real" min-values="0" max-values="9" def-values="1,2,3;4"
            is-storable="true"/>
        <audio:param name="keep" element-size="1" converter="cvt.real" min-values="0" max-values="9" def-values="7"
            is-persistent="true" is-single-group="true" is-single-element="true"/>
        <audio:param name="note" element-size="1" data-type="string" converter="cvt.text" def-values="a,b"
            is-storable="true"/>
        <audio:param name="preset-name" element-size="1" data-type="string" converter="cvt.text" def-values="Default"
            is-storable="true" is-single-group="true" is-single-element="true"/>
        <core:object name="io-params">
            <audio:param name="group-names" element-size="1" data-type="string" converter="cvt.text"
                def-values="MAIN,G2,Rear" is-storable="true" is-single-group="true"/></core:object>
        <core:object name="gate-params">
            <audio:param name="attack" element-size="1" converter="cvt.real" min-values="0" max-values="9"
                def-values="2" is-storable="true"/>
            <audio:param name="mode-name" element-size="1" data-type="string" converter="cvt.text" def-values="Default"
                is-storable="true"/></core:object>
    </core:object></core:object></root>)";

constexpr const char* kEngine = R"(<root><core:object name="plugin"><audio:audio-env name="env"/>
    <audio:param-collector name="params" env="^env"/>
    <audio:viz-collector name="viz" env="^env" param-collector="^params"/>
    <other:param-interface-base-connector-uni name="interface-base-connector"/>
    <audio:interface-base name="interface-base" base-connector="^interface-base-connector" param-collector="^params"
        viz-collector="^viz" undo-count-max="32"/>
    <audio:param-registry name="master" hierarchy="plugin.modMain" id="main" preset-naming="Master preset"
        is-master="true" file="Factory.cbf" preset-name-param="plugin.modMain.preset-name" param-collector="^params"
        param-undo="^interface-base" def-name-remap="plugin=audio"/>
    <audio:param-registry name="gate" hierarchy="plugin.modMain.gate-params." id="maing" preset-naming="Gate preset"
        preset-name-param="plugin.modMain.gate-params.mode-name" param-collector="^params"
        param-undo="^interface-base" def-name-remap="plugin=audio"/></core:object></root>)";

constexpr const char* kEditor = R"(<root>
    <other:param-interface-client-connector-uni name="connector" base-connector="plugin.interface-base-connector"/>
    <audio:interface-client name="client" client-connector="connector"
        group-names-param="plugin.modMain.io-params.group-names"/></root>)";

constexpr const char* kEditorDocument = "editor-document";

constexpr const char* kBound[] = {
    "gain", "list", "keep", "preset-name", "io-params.group-names", "gate-params.attack", "gate-params.mode-name"};

CObject& buildEngine(CTestModule& module)
{
    CAudioPresetBank factory;
    factory.presets.append(numberPreset("main:Soft", {{"gain", 0.25}}));
    factory.presets.append(numberPreset("main:Loud", {{"gain", 0.75}}));
    module.addResource("Factory.cbf", chunked(savedBytes(factory), chunkId("abnk")));
    module.addResource(kEditorDocument, compileDocument(kEditor));
    return module.loadRoot(kEngine);
}

template <class T>
T& find(CObject& root, const char* path)
{
    return dynamic_cast<T&>(CTestModule::find(root, path));
}

std::string textOf(const CAudioParamStorage& values)
{
    std::string text;
    std::string shown;
    for (int group = 0; group < values.groupCount(); ++group) {
        for (int i = 0; i < values.elementCount(group); ++i)
            text +=
                (values.format().hasItems() ? values.text(group, i).toUtf8() : std::to_string(values.value(group, i))) +
                ",";
        text += ";";
        if (values.elementCount(group) > 0)
            shown = text;
    }
    return shown;
}

} // namespace

void CTestProvider::note(const char* what, const CAudioParam& param, std::int32_t group, std::int32_t element)
{
    const std::string path = param.path().toUtf8();
    calls +=
        what + path.substr(path.rfind('.') + 1) + " " + std::to_string(group) + ":" + std::to_string(element) + ";";
}

CErrorPtr CParamMirror::onParamInfo(CInputStream& in)
{
    ++infoCount;
    QRB_TRY(info.load(in));
    if (values.format() != info.format)
        values.setFormat(info.format);
    return {};
}

CErrorPtr CParamMirror::onParamValue(const CAudioParamUpdate& update)
{
    ++valueCount;
    EXPECT_TRUE(values.apply(update));
    return {};
}

std::string CParamMirror::text() const
{
    return textOf(values);
}

CErrorPtr CRegistryMirror::onConnected()
{
    m_told += "connected;";
    return {};
}

CErrorPtr CRegistryMirror::onRegistryUpdate(bool isFactory, const CString& registryId, std::span<const CString> names,
                                            std::int32_t currentIndex)
{
    m_told += (isFactory ? "factory " : "session ") + registryId.toUtf8();
    for (const CString& name : names)
        m_told += " " + name.toUtf8();
    m_told += " @" + std::to_string(currentIndex) + ";";
    return {};
}

CErrorPtr CRegistryMirror::onPresetData(std::int32_t tag, const CAudioPreset& data)
{
    m_told += "preset " + std::to_string(tag) + " " + data.name.toUtf8() + ";";
    preset = data;
    return {};
}

CErrorPtr CRegistryMirror::onBankData(std::int32_t tag, const CAudioPresetBank& bank)
{
    m_told += "bank " + std::to_string(tag) + " " + bank.name.toUtf8() + " " + std::to_string(bank.count()) + ";";
    return {};
}

CInterfaceWorld::CInterfaceWorld()
    : m_module(kShared, CTestModuleOptions{{audioCreators()}, &m_folders}), root(buildEngine(m_module)),
      params(find<CAudioParamCollector>(root, "plugin.params")), viz(find<CAudioVizCollector>(root, "plugin.viz")),
      connector(find<CParamInterfaceBaseConnectorUni>(root, "plugin.interface-base-connector")),
      base(find<CAudioInterfaceBase>(root, "plugin.interface-base")),
      master(find<CAudioParamRegistry>(root, "plugin.master"))
{
    for (const char* const name : kBound)
        bind(name);
    params.completeRegistries();
    params.flushQueue();
    base.setDataProvider(&provider);
}

CInterfaceWorld::~CInterfaceWorld() = default;

void CInterfaceWorld::bind(const char* name)
{
    param(name).bindInfo(m_module.shared<CAudioParamDef>((std::string("audio.modMain.") + name).c_str()).info());
}

void CInterfaceWorld::releaseEngine()
{
    m_module.releaseRoot(root);
}

std::string CInterfaceWorld::text(const char* name)
{
    const CAudioParamGuard guard(params);
    return textOf(param(name).editStorage(guard));
}

std::string CInterfaceWorld::history()
{
    CArray<CString> labels;
    std::int32_t position = 0;
    base.getHistory(labels, position);
    std::string joined;
    for (std::size_t i = 1; i < labels.size(); ++i)
        joined += labels[i].toUtf8() + "|";
    return joined + std::to_string(position);
}

std::string CInterfaceWorld::state()
{
    std::string all;
    for (const char* const name : kBound)
        all += std::string(name) + "=" + text(name) + "\n";
    CArray<CString> names;
    std::int32_t current = 0;
    master.getPresetNames(false, names, current);
    for (const CString& name : names)
        all += name.toUtf8() + "|";
    return all + std::to_string(current) + "\n" + history();
}

CClientTree::CClientTree(CInterfaceWorld& world)
{
    EXPECT_EQ(errorText(CApplication::initRootObject(m_root, {})), "");
    m_root->setEventBridge(nullptr); // events go to this thread only
    EXPECT_EQ(errorText(m_root->setAttrValue(CParamInterfaceClientConnectorUni::kBaseRootAttr,
                                             CObjectAttr::pointer(&world.root), ESetter::now)),
              "");
    EXPECT_EQ(errorText(m_root->loadXMLData(kEditorDocument, ERunInit::yes)), "");
    client = &find<CAudioInterfaceClient>(*m_root, "client");
    connector = &find<CParamInterfaceClientConnectorUni>(*m_root, "connector");
}

void CClientTree::release()
{
    if (CObject* const root = std::exchange(m_root, nullptr))
        root->release();
}

std::string CClientTree::send(const std::vector<std::uint8_t>& message)
{
    CByteArray bytes(std::span<const std::uint8_t>{message});
    return errorText(connector->send(std::move(bytes)));
}

void CClientTree::pull()
{
    EXPECT_EQ(errorText(connector->onTick()), "");
}

} // namespace qrb
