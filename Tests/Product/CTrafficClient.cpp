// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Product/CTrafficClient.h"

#include "Audio/CAudioEnv.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/Interface/CAudioInterfaceBase.h"
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Audio/Viz/CAudioVizCollector.h"
#include "Core/CApplication.h"
#include "Core/CInputStream.h"
#include "Platform/Clock.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <string>

namespace {

constexpr int kGroups = 8;
constexpr int kElements = 6;
constexpr std::size_t kMostGestures = 8;

const char* const kTexts[] = {"", "Snare", "L\xe4rm", "A longer text than fits where texts usually fit"};
const char* const kSources[] = {"modMeterOut", "modSpectrum", "modThumpcraft.modGate.modMeterGR"};

void expectDone(const qrb::CErrorPtr& error)
{
    EXPECT_FALSE(error) << (error ? error->text().toUtf8() : std::string());
}

qrb::CString textAt(const qrb::CAudioParamStorage& storage, double key)
{
    return storage.data().text(static_cast<std::int32_t>(key));
}

} // namespace

CTrafficClient::CTrafficClient(render::CRenderInstance& instance, unsigned seed) : m_instance(instance), m_random(seed)
{
    expectDone(qrb::CApplication::initRootObject(m_root, {}));
    m_root->setEventBridge(nullptr);
    expectDone(m_root->setAttrValue(qrb::CParamInterfaceClientConnectorUni::kBaseRootAttr,
                                    qrb::CObjectAttr::pointer(&instance.root()), qrb::ESetter::now));
    qrb::CAttrOverrides attrs;
    attrs.set("base-connector", qrb::CObjectAttr("plugin.interface-base-connector"));
    expectDone(m_root->createChild(m_connector, "other:param-interface-client-connector-uni", "connector",
                                   qrb::ERequireTemplate::no, nullptr, &attrs));
    attrs.set("client-connector", qrb::CObjectAttr("connector"));
    expectDone(
        m_root->createChild(m_client, "audio:interface-client", "client", qrb::ERequireTemplate::no, nullptr, &attrs));
    m_client->setVizProcessor(this);
    qrb::CArray<qrb::CAudioParam*> params;
    instance.paramCollector().listParams(params);
    for (const qrb::CAudioParam* const param : params) {
        m_params.emplace_back().path = param->path();
        listen(m_params.back());
    }
    for (qrb::CAudioParamRegistry* const registry : instance.paramCollector().registries()) {
        m_registries.emplace_back().engine = registry;
        m_registries.back().id = m_client->listenRegistry(registry->fullName(), m_registries.back());
    }
}

CTrafficClient::~CTrafficClient()
{
    m_root->release();
}

void CTrafficClient::listen(CParam& param)
{
    param.info = qrb::CAudioParamInfo();
    param.values = qrb::CAudioParamStorage(); // what has changed since the last time is not told
    param.id = m_client->listenParam(param.path, param);
    ASSERT_NE(param.id, 0);
}

void CTrafficClient::pull()
{
    expectDone(m_connector->onTick());
}

void CTrafficClient::step()
{
    CParam& param = m_params[static_cast<std::size_t>(pick(static_cast<int>(m_params.size())))];
    switch (pick(64)) {
    case 0:
    case 1:
        usePresets(m_registries[static_cast<std::size_t>(pick(static_cast<int>(m_registries.size())))]);
        break;
    case 2:
        moveInHistory();
        break;
    case 3:
    case 4:
        look();
        break;
    case 5:
        m_client->unlistenParam(param.id);
        listen(param);
        break;
    case 6:
    case 7:
        m_client->resetParam(param.id, pick(kGroups + 1) - 1, pick(kElements + 1) - 1,
                             m_gestures.empty() ? 0 : m_gestures.front(), pick(2) == 0);
        break;
    case 8:
    case 9:
    case 10:
        pull();
        break;
    case 11:
    case 12:
    case 13:
        if (m_gestures.size() < kMostGestures)
            m_gestures.push_back(m_client->createUndoData("Gesture", pick(2) == 0, pick(3)));
        break;
    case 14:
    case 15:
    case 16:
        if (m_gestures.empty())
            break;
        if (pick(4) == 0)
            m_client->removeUndoData(m_gestures.back());
        else
            m_client->submitUndoData(m_gestures.back(), pick(2) == 0 ? "" : "Submitted");
        m_gestures.pop_back();
        break;
    default:
        change(param);
    }
}

void CTrafficClient::change(CParam& param)
{
    const qrb::CAudioParamFormat& format = param.info.format;
    if (param.info.components.empty())
        return; // nobody has bound it so far
    qrb::CAudioParamUpdate update;
    update.format = format;
    update.group = format.isSingleGroup ? 0 : pick(kGroups);
    update.firstElement = format.isSingleElement ? 0 : pick(kElements);
    update.elementCount = format.isSingleElement ? 1 : pick(3);
    update.isToEnd = !format.isSingleElement && pick(8) == 0;
    qrb::CAudioParamData data;
    std::vector<double> values(update.cellCount() + 1);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const qrb::CAudioParamInfo::CComponent& component = param.info.components[i % param.info.components.size()];
        const double value = component.min + (component.max - component.min) * pick(65) / 64.0;
        values[i] = format.type == qrb::EAudioParamType::text  ? data.addText(kTexts[pick(4)])
                    : format.type == qrb::EAudioParamType::raw ? data.addRaw(std::span<const std::uint8_t>())
                    : pick(2) == 0                             ? value
                                                               : std::round(value);
    }
    update.values = values.data();
    update.data = &data;
    m_client->changeParam(param.id, update,
                          m_gestures.empty() || pick(4) == 0
                              ? 0
                              : m_gestures[static_cast<std::size_t>(pick(static_cast<int>(m_gestures.size())))]);
}

void CTrafficClient::usePresets(CRegistry& registry)
{
    const int group = pick(kGroups + 1) - 1;
    const int index = registry.names.empty() ? 0 : pick(static_cast<int>(registry.names.size()));
    switch (pick(9)) {
    case 0:
        m_client->setCurrentProgram(registry.id, index);
        break;
    case 1:
        m_client->renamePreset(registry.id, index, kTexts[pick(4)]);
        break;
    case 2:
        m_client->activateFactoryPreset(registry.id, index);
        break;
    case 3:
    case 4:
        m_client->requestPreset(registry.id, 1, false, -1, registry.engine->isMaster() ? -1 : group);
        break;
    case 5:
        if (!registry.preset.name.empty())
            expectDone(m_client->activatePreset(registry.id, registry.preset, group));
        break;
    case 6:
        if (!registry.engine->isMaster())
            break;
        m_client->requestBank(registry.id, 1, pick(2) == 0);
        if (!registry.preset.name.empty() && pick(4) == 0)
            expectDone(m_client->setDefaultPreset(registry.id, registry.preset));
        break;
    case 7:
        if (pick(4) == 0)
            m_client->activateDefaultPreset(registry.id);
        else
            m_client->updateShadowPreset(registry.id);
        break;
    default:
        m_client->exchangeShadowPreset(registry.id);
    }
}

void CTrafficClient::moveInHistory()
{
    qrb::CArray<qrb::CString> labels;
    std::int32_t position = 0;
    m_client->getUndoHistory(labels, position);
    m_client->setUndoHistoryPos(position + pick(5) - 2);
}

void CTrafficClient::look()
{
    if (m_views.size() < 4 && pick(4) == 0) {
        const qrb::CString source = qrb::CString("plugin.modMain.") + kSources[pick(3)];
        m_views.push_back(m_client->listenViz(qrb::CAudioVizCollector::kOwnInstance, source));
    } else if (!m_views.empty() && pick(8) == 0) {
        m_client->unlistenViz(m_views.back());
        m_views.pop_back();
    } else if (pick(8) == 0) {
        m_client->requestUndoHistory();
        m_client->requestExportSlotNames();
    } else {
        m_client->requestVizData(qrb::platform::clockSeconds());
    }
}

void CTrafficClient::settle()
{
    for (const std::int32_t gesture : m_gestures)
        m_client->submitUndoData(gesture, {});
    m_gestures.clear();
}

std::size_t CTrafficClient::changeCount() const
{
    std::size_t count = 0;
    for (const CParam& param : m_params)
        count += param.changeCount;
    return count;
}

void CTrafficClient::expectSame()
{
    pull();
    {
        const qrb::CAudioParamGuard guard(m_instance.paramCollector());
        for (const CParam& param : m_params)
            param.expectSame(m_instance.paramCollector().getParam(param.path), guard);
    }
    const auto texts = [](const qrb::CArray<qrb::CString>& list) {
        return std::vector<qrb::CString>(list.begin(), list.end());
    };
    qrb::CArray<qrb::CString> told;
    qrb::CArray<qrb::CString> names;
    std::int32_t position = 0;
    std::int32_t current = 0;
    for (const CRegistry& registry : m_registries) {
        registry.engine->getPresetNames(false, names, current);
        EXPECT_EQ(texts(registry.names), texts(names)) << registry.engine->fullName().toUtf8();
        EXPECT_EQ(registry.current, current);
    }
    qrb::CAudioInterfaceBase* base = nullptr;
    expectDone(m_instance.root().findObjectChecked("plugin.interface-base", base));
    m_client->getUndoHistory(told, position);
    base->getHistory(names, current);
    EXPECT_EQ(texts(told), texts(names));
    EXPECT_EQ(position, current);
    EXPECT_EQ(m_client->getSampleRate(), m_instance.getSampleRate());
    EXPECT_EQ(m_client->getInputChannelCount(), m_instance.getInputChannelCount());
    EXPECT_EQ(m_client->getOutputChannelCount(), m_instance.getOutputChannelCount());
    EXPECT_EQ(m_client->getSidechainChannelCount(), m_instance.getSidechainChannelCount());
}

qrb::CErrorPtr CTrafficClient::onVizData(qrb::CInputStream& in)
{
    double time = -1.0;
    expectDone(in.readDouble(time));
    EXPECT_GE(time, 0.0);
    return {};
}

qrb::CErrorPtr CTrafficClient::note(const char* what)
{
    m_notes += what;
    return {};
}

qrb::CErrorPtr CTrafficClient::CParam::onParamInfo(qrb::CInputStream& in)
{
    if (qrb::CErrorPtr error = info.load(in))
        return error;
    if (values.format() != info.format)
        values.setFormat(info.format);
    return {};
}

qrb::CErrorPtr CTrafficClient::CParam::onParamValue(const qrb::CAudioParamUpdate& update)
{
    ++changeCount;
    EXPECT_TRUE(values.apply(update)) << path.toUtf8();
    return {};
}

void CTrafficClient::CParam::expectSame(const qrb::CAudioParam& engine, const qrb::CAudioParamGuard& guard) const
{
    const qrb::CAudioParamStorage& theirs = engine.editStorage(guard);
    EXPECT_EQ(values.hasData(), theirs.hasData()) << path.toUtf8();
    for (int group = 0; group < std::max(values.groupCount(), theirs.groupCount()); ++group) {
        const std::span<const double> mine = values.cells(group);
        const std::span<const double> cells = theirs.cells(group);
        ASSERT_EQ(mine.size(), cells.size()) << path.toUtf8() << " group " << group;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            if (info.format.type == qrb::EAudioParamType::number)
                ASSERT_EQ(mine[i], cells[i]) << path.toUtf8() << " group " << group;
            else
                ASSERT_EQ(textAt(values, mine[i]), textAt(theirs, cells[i])) << path.toUtf8() << " group " << group;
        }
    }
}

qrb::CErrorPtr CTrafficClient::CRegistry::onRegistryUpdate(bool isFactory, const qrb::CString&,
                                                           std::span<const qrb::CString> texts,
                                                           std::int32_t currentIndex)
{
    if (isFactory)
        return {};
    names.clear();
    for (const qrb::CString& text : texts)
        names.append(text);
    current = currentIndex;
    return {};
}

qrb::CErrorPtr CTrafficClient::CRegistry::onPresetData(std::int32_t, const qrb::CAudioPreset& data)
{
    preset = data;
    return {};
}
