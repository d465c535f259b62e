// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessTerminalBase.h"

#include "Audio/CAudioParamReader.h"
#include "Audio/CAudioParamStorage.h"
#include "Audio/CAudioProcessDefBase.h"
#include "Core/CNumberText.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qrb {

namespace {

constexpr double kMinFadeSeconds = 0.0001;

} // namespace

CAudioProcessTerminalBase::~CAudioProcessTerminalBase()
{
    m_instances.clear(); // they give their modules to the pool
}

CErrorPtr CAudioProcessTerminalBase::init()
{
    const double seconds = definition().getAttrDouble("xfade-length");
    m_fadeSeconds = seconds > kMinFadeSeconds && std::isfinite(seconds) ? seconds : kMinFadeSeconds;
    return nullptr;
}

void CAudioProcessTerminalBase::reset()
{
    CAudioProcessBase::reset();
    for (const auto& instance : m_instances) {
        instance->reset();
    }
}

void CAudioProcessTerminalBase::update()
{
    const bool isChanged = isConfigurationChanged();
    const bool hasTouched = takeParamChanges();
    if (isChanged) {
        m_fadeLength = std::max(1, roundToInt(m_fadeSeconds * sampleRate()));
        configureInstances();
    } else if (hasTouched) {
        touchChangedParams();
    }
    bool isLatencyNew = isChanged;
    for (const auto& instance : m_instances) {
        if (instance->isDirty()) {
            instance->applyUpdate(isSmooth(instance->group(), isChanged, hasTouched), m_fadeLength);
        }
        isLatencyNew |= instance->takeLatencyChange();
    }
    if (isLatencyNew) {
        announceLines();
    }
}

void CAudioProcessTerminalBase::configureInstances()
{
    CArray<std::unique_ptr<CAudioModuleInstance>, 2> before = std::move(m_instances);
    m_instances.clear();
    const auto place = [&](int channel) {
        const auto isPlaced = [&](const auto& instance) {
            return instance != nullptr && instance->channel() == channel;
        };
        if (std::ranges::any_of(m_instances, isPlaced)) {
            return;
        }
        const auto kept = std::ranges::find_if(before, isPlaced);
        m_instances.append(kept != before.end() ? std::move(*kept)
                                                : std::make_unique<CAudioModuleInstance>(*this, m_modules));
        m_instances.back()->configure(channel);
    };
    for (const CAudioLine& line : lines()) {
        place(definition().isTerminalWhole() ? CAudioModuleInstance::kAllLines : line.channel);
    }
}

bool CAudioProcessTerminalBase::isTouched(const CAudioBoundParam& param, int group)
{
    if (param.touched == 0) {
        return false;
    }
    return param.isAllGroups || param.storage->format().isSingleGroup ||
           (param.touched & audioParamGroupBit(group)) != 0;
}

void CAudioProcessTerminalBase::touchChangedParams()
{
    for (const CAudioBoundParam& param : boundParams()) {
        for (const auto& instance : m_instances) {
            if (isTouched(param, instance->group())) {
                instance->touch(param.index);
            }
        }
    }
}

bool CAudioProcessTerminalBase::isSmooth(int group, bool isEverythingTouched, bool hasTouched)
{
    if (definition().isSmoothUpdate()) {
        return true;
    }
    return std::ranges::any_of(boundParams(), [&](const CAudioBoundParam& param) {
        return param.isSmooth && (isEverythingTouched || (hasTouched && isTouched(param, group)));
    });
}

void CAudioProcessTerminalBase::announceLines()
{
    m_announced.clear();
    std::size_t place = 0;
    for (const CAudioLine& line : lines()) {
        if (place == m_instances.size()) {
            break;
        }
        const CAudioModuleInstance& instance = *m_instances[place];
        if (!definition().isTerminalWhole()) {
            if (line.channel != instance.channel()) {
                continue; // a further line of a channel that has its instance
            }
            ++place;
        }
        m_announced.append({line.channel, line.group, 0, inputLatency() + instance.latency(), sampleRate()});
    }
    output().setLines(m_announced.span());
}

bool CAudioProcessTerminalBase::takesForm(ESampleForm form) const
{
    return std::ranges::all_of(m_instances, [form](const auto& instance) { return instance->takesForm(form); });
}

void CAudioProcessTerminalBase::processLines()
{
    if (blockLength() == 0) {
        return;
    }
    int line = 0;
    for (const auto& instance : m_instances) {
        instance->process(blockLength(), m_fadeLength);
        sendOutputs(*instance, line);
    }
}

void CAudioProcessTerminalBase::sendOutputs(CAudioModuleInstance& instance, int& line)
{
    for (const CSampleBuffer& buffer : instance.outputs()) {
        output().send(line++, buffer, blockLength());
    }
    instance.releaseOutputs();
    if (instance.hasLatencyChange()) {
        requestUpdate(); // a fade that ended has started the next one
    }
}

bool CAudioProcessTerminalBase::canRunTogether() const
{
    return !m_instances.empty() && m_instances[0]->canRunTogether();
}

void CAudioProcessTerminalBase::processTogether(std::span<CAudioProcessBase* const> nodes)
{
    CArray<CAudioModule*, 32> modules;
    int length = 0;
    const auto terminal = [](CAudioProcessBase* node) { return static_cast<CAudioProcessTerminalBase*>(node); };
    for (CAudioProcessBase* const node : nodes) {
        node->runPlannedInputStep();
        length = std::max(length, node->blockLength());
    }
    for (CAudioProcessBase* const node : nodes) {
        for (const auto& instance : terminal(node)->m_instances) {
            if (node->blockLength() == length && !instance->isFading()) {
                modules.append(&instance->beginTogether(length));
            }
        }
    }
    if (!modules.empty()) {
        modules[0]->processTogether(modules.span());
    }
    for (CAudioProcessBase* const node : nodes) {
        int line = 0;
        for (const auto& instance : terminal(node)->m_instances) {
            if (node->blockLength() == length && !instance->isFading()) {
                instance->endTogether();
            } else if (node->blockLength() > 0) {
                instance->process(node->blockLength(), terminal(node)->m_fadeLength);
            }
            terminal(node)->sendOutputs(*instance, line);
        }
        node->releaseInputs();
    }
}

} // namespace qrb
