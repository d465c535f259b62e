// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/HostParams/CDefaultRouting.h"

#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamUpdateHolder.h"
#include "Audio/CAudioPresetGuard.h"
#include "Audio/CPluginProject.h"
#include "Audio/HostParams/SpeakerNames.h"
#include "Audio/Presets/CAudioParamUndoEntry.h"
#include "Audio/Presets/CAudioPresetRoute.h"
#include "Core/CNumberText.h"

#include <algorithm>

namespace qrb {

using platform::CScopedLock;

namespace {

constexpr std::int32_t kGroupNameCount = 8;

std::int32_t numberOf(const CAudioParam& param, std::int32_t element)
{
    return static_cast<std::int32_t>(roundHalfAway(param.value(0, element)));
}

/// Writes all elements of a parameter, unless they are there already.
void writeNumbers(CAudioParam& param, const CArray<double>& numbers, const CAudioParamRoute& route)
{
    const CAudioParamGuard guard(param.collector());
    const std::span<const double> present = param.editStorage(guard).cells(0);
    if (std::equal(present.begin(), present.end(), numbers.begin(), numbers.end()))
        return;
    CAudioParamUpdate update;
    update.elementCount = static_cast<std::int32_t>(numbers.size());
    update.isToEnd = true;
    update.format = param.info()->format;
    update.values = numbers.span().data();
    param.update(update, guard, route);
}

void writeTexts(CAudioParam& param, const CArray<CString>& texts, const CAudioParamRoute& route)
{
    const CAudioParamGuard guard(param.collector());
    const std::int32_t count = static_cast<std::int32_t>(texts.size());
    bool isNew = param.editStorage(guard).elementCount(0) != count;
    CAudioParamUpdateHolder holder;
    for (std::int32_t i = 0; i < count; ++i) {
        const CString& text = texts[static_cast<std::size_t>(i)];
        isNew = isNew || param.text(0, i) != text;
        holder.values.append(holder.data.addText(text));
    }
    if (!isNew)
        return;
    CAudioParamUpdate update;
    update.elementCount = count;
    update.isToEnd = true;
    update.format = param.info()->format;
    update.values = holder.values.data();
    update.data = &holder.data;
    param.update(update, guard, route);
}

bool isLive(const CAudioParam* param, EAudioParamType type)
{
    if (param == nullptr || !param->isBound())
        return false;
    const CAudioParamGuard guard(param->collector());
    return param->info()->format.type == type && param->editStorage(guard).hasData();
}

} // namespace

std::int32_t CDefaultRouting::CKeyChannels::sourceOf(std::int32_t channel) const
{
    if (contains(channel) || count() == 0)
        return channel;
    if (channel >= end)
        return 0;
    if (count() == 1)
        return first;
    return channel < count() ? channel + first : channel;
}

void CDefaultRouting::init(CAudioParamCollector& collector, const CPluginProject& project)
{
    if (!project.useRouting)
        return;
    m_collector = &collector;
    m_channelCount = project.internalChannelCount;
    const auto find = [&](const char* name) {
        return &collector.getParam(CString("plugin.modMain.io-params.") + name);
    };
    m_params.inChannelNames = find("in-channel-names");
    m_params.groupNames = find("group-names");
    m_params.inRouting = find("in-routing");
    m_params.grouping = find("grouping");
    m_params.outRouting = find("out-routing");
    if (project.useMidSide)
        m_params.pairs = find("ms-pairs");
    if (project.useSidechain) {
        m_params.sidechain = find("sidechain");
        m_params.sidechainMute = find("sidechain-mute");
    }
}

void CDefaultRouting::setLabels(const CArray<CString>& inputs, const CArray<CString>& sidechain)
{
    const CScopedLock lock(m_lock);
    m_areLabelsSet = true;
    m_inputLabels = inputs;
    m_sidechainLabels = sidechain;
    for (const CArray<CString>* const labels : {&inputs, &sidechain})
        for (const CString& label : *labels)
            if (std::find(m_seenLabels.begin(), m_seenLabels.end(), label) == m_seenLabels.end())
                m_seenLabels.append(label);
}

void CDefaultRouting::allow()
{
    const CScopedLock lock(m_lock);
    m_isAllowed = true;
}

void CDefaultRouting::applyDefaultRouting(const CAudioParamRoute& route)
{
    if (m_collector == nullptr)
        return;
    const CAudioPresetGuard presetGuard(*m_collector);
    const CAudioParamGuard guard(*m_collector);
    const CScopedLock lock(m_lock);
    if (!m_isAllowed || m_inputLabels.empty() || !areLive() || !isUntouched())
        return;
    const CAudioPresetRoute scope(*m_collector, route);
    writeNames(scope.route());
    writeChannels(scope.route());
}

bool CDefaultRouting::areLive() const
{
    const auto isNumber = [](const CAudioParam* param) { return isLive(param, EAudioParamType::number); };
    const auto isText = [](const CAudioParam* param) { return isLive(param, EAudioParamType::text); };
    return isText(m_params.inChannelNames) && isText(m_params.groupNames) && isNumber(m_params.inRouting) &&
           isNumber(m_params.grouping) && isNumber(m_params.outRouting) &&
           (m_params.pairs == nullptr || isNumber(m_params.pairs)) &&
           (m_params.sidechain == nullptr || (isNumber(m_params.sidechain) && isNumber(m_params.sidechainMute)));
}

bool CDefaultRouting::areGroupNamesUntouched() const
{
    constexpr const char* kFirstNames[] = {"1", "G1", "G-1", "MONO", "STEREO", "ALL CH", "MULTI"};
    const CString first = m_params.groupNames->text(0, 0);
    if (std::none_of(std::begin(kFirstNames), std::end(kFirstNames), [&](const char* name) { return first == name; }))
        return false;
    for (std::int32_t i = 1; i < kGroupNameCount; ++i) {
        const CString name = m_params.groupNames->text(0, i);
        const CString number = formatInteger(i + 1);
        if (name != number && name != CString("G") + number && name != CString("G-") + number)
            return false;
    }
    return true;
}

bool CDefaultRouting::findKeyChannels(CKeyChannels& out) const
{
    out = {};
    if (m_params.sidechain == nullptr)
        return true;
    std::int32_t count = 0;
    for (std::int32_t i = 0; i < m_channelCount; ++i) {
        if (numberOf(*m_params.sidechainMute, i) == 0)
            continue;
        if (count++ == 0)
            out.first = i;
        out.end = i + 1;
    }
    if (count != 0)
        return out.count() == count && m_areLabelsSet;
    for (std::int32_t i = 0; i < m_channelCount; ++i)
        if (numberOf(*m_params.sidechain, i) != i)
            return false;
    return true;
}

bool CDefaultRouting::isUntouched() const
{
    for (std::int32_t i = 0; m_params.pairs != nullptr && i < m_channelCount; ++i)
        if (numberOf(*m_params.pairs, i) != 0)
            return false;
    CKeyChannels keys;
    if (!areGroupNamesUntouched() || !findKeyChannels(keys))
        return false;
    std::int32_t routed = 0;
    while (routed < m_channelCount && numberOf(*m_params.inRouting, routed) == routed + 1)
        ++routed;
    for (std::int32_t i = 0; i < m_channelCount; ++i) {
        const std::int32_t in = numberOf(*m_params.inRouting, i);
        const std::int32_t out = numberOf(*m_params.outRouting, i);
        const bool isMutedKey = keys.contains(i) && out == 0;
        if ((i >= routed && in != 0) || (out != in && !isMutedKey))
            return false;
        if (numberOf(*m_params.grouping, i) != (i < routed ? 0 : i >> 1))
            return false;
    }
    if (keys.count() == 0)
        return true;
    if (keys.end != routed)
        return false;
    for (std::int32_t i = 0; i < keys.end; ++i)
        if (numberOf(*m_params.sidechain, i) != keys.sourceOf(i))
            return false;
    return true;
}

bool CDefaultRouting::areChannelNamesUntouched() const
{
    const CAudioParamGuard guard(*m_collector);
    const std::int32_t count = m_params.inChannelNames->editStorage(guard).elementCount(0);
    for (std::int32_t i = 0; i < count; ++i) {
        const CString name = m_params.inChannelNames->text(0, i);
        const bool isDefault = name == m_params.inChannelNames->info()->defaults.text(0, i);
        const bool isSeen = std::find(m_seenLabels.begin(), m_seenLabels.end(), name) != m_seenLabels.end();
        if (!isDefault && !isSeen && !isSpeakerName(name))
            return false;
    }
    return true;
}

void CDefaultRouting::writeNames(const CAudioParamRoute& route) const
{
    if (areChannelNamesUntouched()) {
        CArray<CString> names = m_inputLabels;
        for (const CString& label : m_sidechainLabels)
            names.append(label);
        writeTexts(*m_params.inChannelNames, names, route);
    }
    CArray<CString> names;
    names.append(inputCount() == 1 ? "MONO" : inputCount() == 2 ? "STEREO" : "MULTI");
    for (std::int32_t i = 1; i < kGroupNameCount; ++i)
        names.append(CString("G-") + formatInteger(i + 1));
    writeTexts(*m_params.groupNames, names, route);
}

void CDefaultRouting::writeChannels(const CAudioParamRoute& route) const
{
    CKeyChannels keys;
    if (m_params.sidechain != nullptr && inputCount() < m_channelCount)
        keys = {inputCount(), std::min(m_channelCount, labelCount())};
    CArray<double> inRouting;
    CArray<double> sidechain;
    CArray<double> mute;
    CArray<double> outRouting;
    CArray<double> grouping;
    for (std::int32_t i = 0; i < m_channelCount; ++i) {
        const bool isRouted = i < labelCount();
        inRouting.append(isRouted ? i + 1 : 0);
        sidechain.append(keys.sourceOf(i));
        mute.append(keys.contains(i) ? 1 : 0);
        outRouting.append(isRouted && !keys.contains(i) ? i + 1 : 0);
        grouping.append(isRouted ? 0 : i >> 1);
    }
    writeNumbers(*m_params.inRouting, inRouting, route);
    if (m_params.sidechain != nullptr) {
        writeNumbers(*m_params.sidechain, sidechain, route);
        writeNumbers(*m_params.sidechainMute, mute, route);
    }
    writeNumbers(*m_params.outRouting, outRouting, route);
    writeNumbers(*m_params.grouping, grouping, route);
}

std::unique_ptr<CAudioParamUndoEntry> CDefaultRouting::importLabels()
{
    if (m_collector == nullptr)
        return nullptr;
    const CAudioParamGuard guard(*m_collector);
    const CScopedLock lock(m_lock);
    if (labelCount() == 0 || !isLive(m_params.inChannelNames, EAudioParamType::text))
        return nullptr;
    CArray<CString> labels = m_inputLabels;
    for (const CString& label : m_sidechainLabels)
        labels.append(label);
    bool isNew = false;
    for (std::size_t i = 0; i < labels.size(); ++i)
        isNew = isNew || m_params.inChannelNames->text(0, static_cast<std::int32_t>(i)) != labels[i];
    if (!isNew)
        return nullptr;
    auto entry = std::make_unique<CAudioParamUndoEntry>("Channel label import");
    writeTexts(*m_params.inChannelNames, labels, {.undo = entry.get()});
    return entry;
}

} // namespace qrb
