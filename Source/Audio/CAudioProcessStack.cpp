// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessStack.h"

#include "Audio/CAudioParamStorage.h"
#include "Audio/CAudioProcessConnection.h"
#include "Audio/CAudioProcessDefBase.h"
#include "Core/CNumberText.h"

#include <algorithm>
#include <utility>

namespace qrb {

namespace {

constexpr int kAllPorts = CAudioProcessConnection::kAllPorts;

/// Rank of a chain among those that reach the output.
int orderOf(int group, const CAudioStackChain& chain)
{
    return group * CAudioProcessPort::kMaxLines + chain.channel + 1;
}

} // namespace

CAudioStackChain& CAudioStackGroup::chain(int channel)
{
    std::size_t place = 0;
    while (place < chains.size() && chains[place]->channel < channel) {
        ++place;
    }
    if (place == chains.size() || chains[place]->channel != channel) {
        chains.insertAt(place, std::make_unique<CAudioStackChain>());
        chains[place]->channel = channel;
    }
    return *chains[place];
}

CAudioProcessStack::CAudioProcessStack() = default;

CAudioProcessStack::~CAudioProcessStack()
{
    detachParam(m_countParam);
}

CErrorPtr CAudioProcessStack::init()
{
    if (!definition().stackParam().empty()) {
        attachParam(m_countParam, definition().stackParam(), groupIndex(), 0, &m_countDirty);
    }
    return nullptr;
}

void CAudioProcessStack::bindParams() {} // the instances bind theirs

void CAudioProcessStack::disconnectAll()
{
    CAudioProcessComposite::disconnectAll();
    sequenceStore().clear();
    m_groups.clear();
}

void CAudioProcessStack::update()
{
    const bool isCountChanged = std::exchange(m_countDirty, std::uint8_t{0}) != 0;
    m_countParam.mask = 0;
    if (isConfigurationChanged()) {
        updateGroups();
    } else if (!isCountChanged) {
        return;
    }
    updateLengths();
    rebuildSequence();
}

void CAudioProcessStack::updateGroups()
{
    std::uint32_t present = 0;
    for (const CAudioLine& line : lines()) {
        present |= 1u << CAudioStackGroup::numberOf(line.group);
    }
    for (std::size_t i = m_groups.size(); i > 0; --i) {
        const std::uint32_t bit = 1u << m_groups[i - 1]->group;
        if ((present & bit) == 0) {
            m_groups.removeAt(i - 1);
        }
    }
    std::size_t place = 0;
    for (int group = 0; group < 32; ++group) {
        if ((present & (1u << group)) == 0) {
            continue;
        }
        if (place == m_groups.size() || m_groups[place]->group != group) {
            m_groups.insertAt(place, std::make_unique<CAudioStackGroup>(group));
        }
        assignLines(*m_groups[place++]);
    }
}

void CAudioProcessStack::assignLines(CAudioStackGroup& group)
{
    for (const auto& chain : group.chains) {
        chain->lines.clear();
        chain->slots.clear();
    }
    for (int port = 0; port < portCount(); ++port) {
        for (CAudioLine& line : lines(port)) {
            if (CAudioStackGroup::numberOf(line.group) != group.group) {
                continue;
            }
            CAudioStackChain& chain = group.chain(definition().isChannelStack() ? line.channel : -1);
            chain.lines.append({line.channel, line.group, port, inputLatency(), sampleRate()});
            chain.slots.append(&line);
        }
    }
    for (std::size_t i = group.chains.size(); i > 0; --i) {
        CAudioStackChain& chain = *group.chains[i - 1];
        if (chain.lines.empty()) {
            group.chains.removeAt(i - 1);
        } else {
            chain.input.setLines(chain.lines.span());
        }
    }
}

void CAudioProcessStack::updateLengths()
{
    for (const auto& group : m_groups) {
        const int length = desiredLength(group->group);
        for (const auto& chain : group->chains) {
            setLength(group->group, *chain, length);
        }
    }
}

int CAudioProcessStack::desiredLength(int group) const
{
    if (m_countParam.storage == nullptr) {
        return 1;
    }
    const int place = groupIndex() >= 0 ? groupIndex() : group;
    return std::clamp(roundToInt(m_countParam.storage->value(place, 0, 0, 1.0)), 0, kMaxInstances);
}

void CAudioProcessStack::setLength(int group, CAudioStackChain& chain, int length)
{
    auto& instances = chain.instances;
    while (static_cast<int>(instances.size()) > length) {
        instances.removeLast(); // takes its connections along
    }
    while (static_cast<int>(instances.size()) < length) {
        std::unique_ptr<CAudioProcessBase> instance = makeInstance(group, static_cast<int>(instances.size()));
        if (instance == nullptr) {
            break;
        }
        if (instances.empty()) {
            chain.input.connect(kAllPorts, instance->input(), kAllPorts);
        } else {
            instances.back()->output().disconnect(kAllPorts, innerOutput(), kAllPorts);
            instances.back()->output().connect(0, instance->input(), 0);
        }
        instances.append(std::move(instance));
    }
    if (!instances.empty()) {
        instances.back()->output().connect(kAllPorts, innerOutput(), kAllPorts, orderOf(group, chain));
    }
}

CString CAudioProcessStack::instanceName(const CString& stack, int element)
{
    return element == 0 ? stack : stack + "#" + formatInteger(element);
}

std::unique_ptr<CAudioProcessBase> CAudioProcessStack::makeInstance(int group, int element)
{
    const CAudioProcessSetup setup{context(), &definition(), instanceName(fullName(), element),
                                   group,     element,       EExpansion::stacked};
    std::unique_ptr<CAudioProcessBase> instance;
    const CErrorPtr error = instantiateProcess(setup, instance);
    logError(error);
    return instance;
}

void CAudioProcessStack::rebuildSequence()
{
    sequenceStore().clear();
    for (const auto& group : m_groups) {
        for (const auto& chain : group->chains) {
            for (const auto& instance : chain->instances) {
                sequenceStore().append(instance.get());
            }
        }
    }
}

CArray<CAudioLineSource*, 8> CAudioProcessStack::innerSources()
{
    CArray<CAudioLineSource*, 8> sources;
    for (const auto& group : m_groups) {
        for (const auto& chain : group->chains) {
            sources.append(&chain->input);
        }
    }
    return sources;
}

CAudioProcessComposite::CInnerLine CAudioProcessStack::innerLine(const CAudioLine& line)
{
    for (const auto& group : m_groups) {
        for (const auto& chain : group->chains) {
            const auto slot = std::ranges::find(chain->slots, &line);
            if (slot != chain->slots.end()) {
                return {&chain->input, static_cast<int>(slot - chain->slots.begin())};
            }
        }
    }
    return {};
}

void CAudioProcessStack::sendInner()
{
    for (const auto& group : m_groups) {
        for (const auto& chain : group->chains) {
            for (std::size_t i = 0; i < chain->slots.size(); ++i) {
                chain->input.send(static_cast<int>(i), chain->slots[i]->buffer, blockLength());
            }
        }
    }
}

} // namespace qrb
