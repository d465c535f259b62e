// SPDX-License-Identifier: GPL-3.0-or-later
// What an instance and its host have in common: parameters, gestures, programs, the window's size, the channels' names.
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioWrapper.h"
#include "Audio/HostParams/CAudioExtParam.h"
#include "Audio/HostParams/CAudioExtParamList.h"
#include "Audio/Interface/CAudioInterfaceBase.h"
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Audio/Presets/CAudioParamUndoEntry.h"
#include "Core/CAppData.h"
#include "Core/CNumberText.h"

#include <algorithm>
#include <cmath>

namespace qrb {

namespace {

constexpr double kFallbackWidth = 400.0;
constexpr double kFallbackHeight = 300.0;

constexpr std::int32_t placeKey(std::int32_t group, std::int32_t element)
{
    return element * 256 + group;
}

std::int32_t scaled(double size, double scale)
{
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(roundHalfAway(size * scale), 1, 1 << 15));
}

} // namespace

void CAudioWrapper::attachExtParams()
{
    const std::span<CAudioExtParam* const> params = m_extParams->params();
    for (std::size_t i = 0; i < params.size(); ++i) {
        const std::int32_t index = static_cast<std::int32_t>(i);
        params[i]->setBridge(&m_hostBridge, index);
        m_extParamIndices[&params[i]->param()][placeKey(params[i]->group(), params[i]->element())] = index;
    }
    m_programListener.attach(m_paramRegistry);
    m_paramRegistry->setRoutingListener(&m_routing);
    m_routing.init(*m_paramCollector, m_project);
}

void CAudioWrapper::attachWindowSize()
{
    m_windowSizeParam = &m_paramCollector->getParam("plugin.modMain.main-window-size");
    refreshWindowSize();
    if (m_project.useWindowResizing)
        m_windowSizeListener.attach(m_paramCollector, CAudioParamCollector::listenerKey(*m_windowSizeParam));
}

std::span<CAudioExtParam* const> CAudioWrapper::extParams() const
{
    return m_extParams->params();
}

bool CAudioWrapper::onExtParamEvent(const CExternalEvent& event)
{
    const std::span<CAudioExtParam* const> params = m_extParams->params();
    const bool isKnown = event.index >= 0 && static_cast<std::size_t>(event.index) < params.size();
    return !isKnown || params[static_cast<std::size_t>(event.index)]->trySetNormal(event.value);
}

void CAudioWrapper::onExtParamChange(std::int32_t, double) {}

void CAudioWrapper::onProgramChange() {}

void CAudioWrapper::beginEdit(std::int32_t) {}

void CAudioWrapper::endEdit(std::int32_t) {}

bool CAudioWrapper::resizeWindow(std::int32_t, std::int32_t)
{
    return true;
}

void CAudioWrapper::onBeginChange(CAudioParam& param, std::int32_t group, std::int32_t element)
{
    deferGesture(param, group, element, m_beginTarget);
}

void CAudioWrapper::onEndChange(CAudioParam& param, std::int32_t group, std::int32_t element)
{
    deferGesture(param, group, element, m_endTarget);
}

void CAudioWrapper::deferGesture(CAudioParam& param, std::int32_t group, std::int32_t element, CGestureTarget& target)
{
    const CAudioParamInfo* const info = param.info();
    const auto places = m_extParamIndices.find(&param);
    if (info == nullptr || places == m_extParamIndices.end())
        return;
    const std::int32_t ownGroup = info->format.isSingleGroup ? 0 : group;
    const std::int32_t ownElement = info->format.isSingleElement ? 0 : element;
    const CAudioParamGuard guard(*m_paramCollector);
    for (const auto& [key, index] : places->second) {
        const CAudioExtParam& row = *m_extParams->params()[static_cast<std::size_t>(index)];
        // A negative place stands for all of them.
        const bool isGroup = ownGroup < 0 || ownGroup == row.group();
        const bool isElement = ownElement < 0 || ownElement == row.element();
        if (isGroup && isElement)
            m_paramCollector->defer(target, index, 0.0, guard);
    }
}

void CAudioWrapper::CProgramChangeListener::onUpdate(const CUpdateInfo& info)
{
    if (info.sender == &owner())
        return;
    owner().m_isProgramChangePending = true;
    owner().m_paramCollector->wakeDeferred();
}

void CAudioWrapper::CWinSizeParamListener::onUpdate(const CUpdateInfo&)
{
    owner().m_isWindowSizeNew = true;
    owner().m_paramCollector->wakeDeferred();
}

void CAudioWrapper::refreshWindowSize()
{
    CAppData* const settings = CAppData::findScope("local");
    double scale = 1.0;
    if (settings != nullptr && parseNumber(settings->getString("ui-scale", "1.0"), scale) && scale > 0.0)
        m_uiScale = scale;
    computeWindowSize();
}

void CAudioWrapper::computeWindowSize()
{
    m_windowWidth = scaled(m_windowSizeParam->value(0, 0, 0, kFallbackWidth), m_uiScale);
    m_windowHeight = scaled(m_windowSizeParam->value(0, 1, 0, kFallbackHeight), m_uiScale);
}

bool CAudioWrapper::getMinWindowSize(std::int32_t& width, std::int32_t& height) const
{
    if (m_project.minWindowWidth < 1 || m_project.minWindowHeight < 1)
        return false;
    width = scaled(m_project.minWindowWidth, m_uiScale);
    height = scaled(m_project.minWindowHeight, m_uiScale);
    return true;
}

void CAudioWrapper::setWindowSizeFromHost(std::int32_t width, std::int32_t height)
{
    const CAudioParamInfo* const info = m_windowSizeParam->info();
    if (!m_project.useWindowResizing || info == nullptr)
        return;
    const double values[] = {static_cast<double>(scaled(width, 1.0 / m_uiScale)),
                             static_cast<double>(scaled(height, 1.0 / m_uiScale))};
    CAudioParamUpdate update;
    update.elementCount = static_cast<std::int32_t>(std::size(values));
    update.source = this;
    update.format = info->format;
    update.values = values;
    m_windowSizeParam->update(update);
}

void CAudioWrapper::reportLayout(const CArray<CString>& inputLabels, const CArray<CString>& sidechainLabels)
{
    m_routing.setLabels(inputLabels, sidechainLabels);
    m_routing.allow();
    m_routing.applyDefaultRouting({});
}

void CAudioWrapper::importChannelLabels()
{
    const CAudioParamGuard guard(*m_paramCollector);
    if (auto step = m_routing.importLabels())
        m_interfaceBase->submit(std::move(step));
}

} // namespace qrb
