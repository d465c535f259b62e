// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessTerminalBase.h"

#include "Audio/CAudioParamReader.h"
#include "Audio/CAudioParamStorage.h"
#include "Audio/CAudioPieces.h"
#include "Audio/CAudioProcessConnection.h"
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
        if (instance->takePassingChange()) {
            noteStructureChange();
        }
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
    if (instance.takePassingChange()) {
        noteStructureChange();
    }
}

void CAudioProcessTerminalBase::processPlanned()
{
    runPlannedInputStep();
    int line = 0;
    for (const auto& instance : m_instances) {
        if (blockLength() > 0) {
            runPlanned(*instance, line);
        }
    }
    releasePlannedInputs();
}

void CAudioProcessTerminalBase::runPlanned(CAudioModuleInstance& instance, int& line)
{
    if (!instance.isFading()) {
        sendSettled(instance.runSettled(blockLength()), line);
        return;
    }
    instance.process(blockLength(), m_fadeLength);
    sendOutputs(instance, line);
}

void CAudioProcessTerminalBase::sendSettled(std::span<CSampleBuffer> outputs, int& line)
{
    for (CSampleBuffer& buffer : outputs) {
        output().sendPlanned(line++, std::move(buffer), blockLength());
    }
}

const CAudioLine* CAudioProcessTerminalBase::passedLine(int outputLine)
{
    for (const auto& instance : m_instances) {
        if (outputLine < instance->outputCount()) {
            return instance->passedLine(outputLine);
        }
        outputLine -= instance->outputCount();
    }
    return nullptr;
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
                terminal(node)->sendSettled(instance->endSettled(), line);
            } else if (node->blockLength() > 0) {
                terminal(node)->runPlanned(*instance, line);
            }
        }
        node->releasePlannedInputs();
    }
}

bool CAudioProcessTerminalBase::canRunInSeries() const
{
    return m_instances.size() == 1 && m_instances[0]->canRunInSeries();
}

bool CAudioProcessTerminalBase::isFedBy(const CAudioProcessTerminalBase& other)
{
    for (int port = 1; port < portCount(); ++port) {
        if (!lines(port).empty()) {
            return false;
        }
    }
    const std::span<CAudioLine> own = lines();
    for (std::size_t i = 0; i < own.size(); ++i) {
        if (own[i].sources.size() != 1) {
            return false;
        }
        const CAudioLine::CSource& source = own[i].sources[0];
        const auto& from = source.connection->lines()[static_cast<std::size_t>(source.index)];
        if (&source.connection->source() != &other.output() || from.delay != nullptr ||
            from.sourceIndex != static_cast<int>(i)) {
            return false;
        }
    }
    return !own.empty() && own.size() == other.output().lines().size();
}

void CAudioProcessTerminalBase::processInSeries(std::span<CAudioProcessBase* const> nodes)
{
    auto& first = static_cast<CAudioProcessTerminalBase&>(*nodes[0]);
    first.runPlannedInputStep();
    if (first.blockLength() > 0 && runInSeries(nodes)) {
        first.releasePlannedInputs();
        return;
    }
    int line = 0;
    for (const auto& instance : first.m_instances) {
        if (first.blockLength() > 0) {
            first.runPlanned(*instance, line);
        }
    }
    first.releasePlannedInputs();
    for (CAudioProcessBase* const node : nodes.subspan(1)) {
        node->processPlanned();
    }
}

bool CAudioProcessTerminalBase::runInSeries(std::span<CAudioProcessBase* const> nodes)
{
    CArray<CAudioModule*, 32> modules;
    for (CAudioProcessBase* const node : nodes) {
        CAudioModuleInstance& instance = *static_cast<CAudioProcessTerminalBase*>(node)->m_instances[0];
        if (instance.isFading()) {
            return false;
        }
        modules.append(&instance.beginTogether(nodes[0]->blockLength()));
    }
    if (!modules[0]->processInSeries(modules.span())) {
        return false;
    }
    auto& last = static_cast<CAudioProcessTerminalBase&>(*nodes.back());
    int line = 0;
    for (CSampleBuffer& buffer : last.m_instances[0]->endSettled()) {
        last.output().sendPlanned(line++, std::move(buffer), nodes[0]->blockLength());
    }
    return true;
}

bool CAudioProcessTerminalBase::canOverlap(const CAudioProcessTerminalBase& behind) const
{
    return m_instances.size() == 1 && behind.m_instances.size() == 1 &&
           m_instances[0]->canOverlap(*behind.m_instances[0]);
}

bool CAudioProcessTerminalBase::isFading() const
{
    return std::ranges::any_of(m_instances, [](const auto& instance) { return instance->isFading(); });
}

void CAudioProcessTerminalBase::processInPieces(std::span<CAudioProcessBase* const> nodes)
{
    const int length = nodes[0]->input().blockLength();
    const auto isBusy = [](CAudioProcessBase* node) {
        return static_cast<CAudioProcessTerminalBase*>(node)->isFading();
    };
    if (length >= CAudioPieces::kShortestBlock && std::ranges::none_of(nodes, isBusy)) {
        CAudioPieces(nodes, length).run();
        return;
    }
    for (CAudioProcessBase* const node : nodes) {
        node->processPlanned();
    }
}

} // namespace qrb
