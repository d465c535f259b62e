// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioModuleInstance.h"

#include "Audio/CAudioProcessTerminalBase.h"
#include "Audio/CSampleBufferPool.h"
#include "Audio/Processes/CDenormNoise.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace qrb {

CAudioModuleInstance::CAudioModuleInstance(CAudioProcessTerminalBase& node, CAudioModulePool& modules)
    : m_node(node), m_modules(modules), m_active(modules.take(node)), m_nextSeed(CDenormNoise::takeSeed())
{
    m_active->m_lineIds.clear();
}

CAudioModuleInstance::~CAudioModuleInstance()
{
    m_modules.keep(std::move(m_fading));
    m_modules.keep(std::move(m_active));
}

bool CAudioModuleInstance::giveLines(CAudioModule& module) const
{
    CArray<CAudioModule::CLineId, 4> ids;
    module.m_ports.resize(static_cast<std::size_t>(m_node.portCount()));
    for (int port = 0; port < m_node.portCount(); ++port) {
        auto& given = module.m_ports[static_cast<std::size_t>(port)].lines;
        given.clear();
        for (CAudioLine& line : m_node.lines(port)) {
            if (m_channel == kAllLines || line.channel == m_channel) {
                given.append(&line);
                ids.append({port, line.channel, line.group});
            }
        }
    }
    const bool isChanged = !(ids == module.m_lineIds) || module.m_sampleRate != m_node.sampleRate();
    module.m_lineIds = std::move(ids);
    module.m_sampleRate = m_node.sampleRate();
    const auto& main = module.m_ports[0].lines;
    module.m_channel = main.empty() ? -1 : main[0]->channel;
    module.m_group = m_node.groupIndex() >= 0 || main.empty() ? std::max(m_node.groupIndex(), 0) : main[0]->group;
    module.m_outputs.resize(m_channel == kAllLines ? main.size() : 1);
    return isChanged;
}

void CAudioModuleInstance::configure(int channel)
{
    endFade();
    m_isFadePending = false;
    m_channel = channel;
    const bool isChanged = giveLines(*m_active);
    m_group = m_active->m_group;
    startModule(*m_active);
    if (isChanged) {
        m_active->reset();
        m_active->m_isFirstUpdate = true;
    }
    touchAll();
}

void CAudioModuleInstance::reset()
{
    endFade();
    m_isFadePending = false;
    m_active->reset();
    m_active->m_isFirstUpdate = true;
    touchAll();
}

void CAudioModuleInstance::touch(int allocIndex)
{
    m_active->m_touched[static_cast<std::size_t>(allocIndex)] = 1;
    m_active->m_isDirty = 1;
}

void CAudioModuleInstance::touchAll()
{
    std::ranges::fill(m_active->m_touched, std::uint8_t{1});
    m_active->m_isDirty = 1;
}

void CAudioModuleInstance::applyUpdate(bool isSmooth, int fadeLength)
{
    if (!isDirty()) {
        return;
    }
    if (!isSmooth || m_active->m_isFirstUpdate) {
        updateNow(*m_active);
    } else if (isFading()) {
        m_isFadePending = true;
        m_active->m_isDirty = 0;
    } else {
        startFade(fadeLength);
    }
}

void CAudioModuleInstance::startModule(CAudioModule& module)
{
    module.m_seed = m_nextSeed;
    m_nextSeed += 0x9E3779B9u; // far from those of other instances, which begin with the numbers beside this one
    module.start();
}

void CAudioModuleInstance::updateNow(CAudioModule& module)
{
    module.update();
    std::ranges::fill(module.m_touched, std::uint8_t{0});
    module.m_isDirty = 0;
    module.m_isFirstUpdate = false;
}

void CAudioModuleInstance::startFade(int fadeLength)
{
    m_fading = std::exchange(m_active, m_modules.take(m_node));
    m_fading->m_isDirty = 0;
    m_isFadePending = false;
    (void)giveLines(*m_active);
    m_active->m_latency = 0;
    startModule(*m_active);
    m_active->reset();
    m_active->m_isFirstUpdate = true;
    touchAll();
    updateNow(*m_active);

    m_holdLeft = std::abs(m_active->latency() - m_fading->latency());
    m_fadeLeft = fadeLength;
    m_oscillators.resize(m_active->m_outputs.size());
    for (CFadeOscillator& oscillator : m_oscillators) {
        oscillator.start(fadeLength);
    }
}

void CAudioModuleInstance::endFade()
{
    m_modules.keep(std::move(m_fading));
}

void CAudioModuleInstance::process(int blockLength, int fadeLength)
{
    if (isCutNeeded(blockLength)) {
        runSplit(blockLength, fadeLength);
    } else {
        runSegment(blockLength, fadeLength);
    }
}

void CAudioModuleInstance::releaseOutputs()
{
    for (CSampleBuffer& buffer : m_outputs) {
        buffer.clear();
    }
}

void CAudioModuleInstance::runModule(CAudioModule& module, int length) const
{
    module.m_blockLength = length;
    module.process();
    fillOutputs(module, length);
}

void CAudioModuleInstance::fillOutputs(CAudioModule& module, int length) const
{
    for (CSampleBuffer& buffer : module.m_outputs) {
        if (!buffer) {
            buffer = m_node.pool().getSilence(length);
        } else if (isFading()) {
            buffer = m_node.pool().getWhole(buffer, length);
        }
    }
}

CAudioModule& CAudioModuleInstance::beginTogether(int blockLength)
{
    m_active->m_blockLength = blockLength;
    return *m_active;
}

CAudioModule& CAudioModuleInstance::beginPiece(int length, CSampleBuffer* wholeOutputs, int start)
{
    m_active->m_wholeOutputs = wholeOutputs;
    m_active->m_wholeStart = start;
    return beginTogether(length);
}

void CAudioModuleInstance::endPieces()
{
    m_active->m_wholeOutputs = nullptr;
}

std::span<CSampleBuffer> CAudioModuleInstance::runSettled(int blockLength)
{
    m_active->m_blockLength = blockLength;
    m_active->process();
    return endSettled();
}

std::span<CSampleBuffer> CAudioModuleInstance::endSettled()
{
    fillOutputs(*m_active, m_active->m_blockLength);
    return m_active->m_outputs.span();
}

const CAudioLine* CAudioModuleInstance::passedLine(int index) const
{
    const int port = passedPort();
    return port == CAudioModule::kNoPort ? nullptr : m_active->line(port, index);
}

void CAudioModuleInstance::takeOutputs()
{
    if (m_outputs.size() != m_active->m_outputs.size()) {
        m_outputs.resize(m_active->m_outputs.size());
    }
    for (std::size_t i = 0; i < m_outputs.size(); ++i) {
        m_outputs[i] = std::move(m_active->m_outputs[i]);
    }
}

void CAudioModuleInstance::runSegment(int length, int fadeLength)
{
    runModule(*m_active, length);
    if (!isFading()) {
        takeOutputs();
        return;
    }
    m_outputs.resize(m_active->m_outputs.size());
    runModule(*m_fading, length);
    const int hold = std::min(m_holdLeft, length);
    const int fade = std::min(m_fadeLeft, length - hold);
    for (std::size_t i = 0; i < m_outputs.size(); ++i) {
        m_outputs[i] = mix(i, length, hold, fade);
    }
    m_holdLeft -= hold;
    m_fadeLeft -= fade;
    if (m_fadeLeft > 0) {
        return;
    }
    endFade();
    if (m_isFadePending) {
        startFade(fadeLength);
    }
}

CSampleBuffer CAudioModuleInstance::mix(std::size_t output, int length, int hold, int fade)
{
    const CSampleBuffer before = std::move(m_fading->m_outputs[output]);
    CSampleBuffer after = std::move(m_active->m_outputs[output]);
    if (hold == length) {
        return before;
    }
    CFadeOscillator& oscillator = m_oscillators[output];
    if (before == after) {
        for (int i = 0; i < fade; ++i) {
            (void)oscillator.next();
        }
        return after;
    }
    CSampleBuffer mixed = after.isUnique() ? after : m_node.pool().get(length);
    double* out = mixed.data();
    const double* from = before.data();
    const double* to = after.data();
    std::copy_n(from, hold, out);
    for (int i = hold; i < hold + fade; ++i) {
        const double s = oscillator.next();
        // The weights' rounding must not show where both are one signal: whether they come in one buffer depends on
        // the cuts of the block.
        out[i] = from[i] == to[i] ? to[i] : (0.5 + s) * from[i] + (0.5 - s) * to[i];
    }
    if (out != to) {
        std::copy(to + hold + fade, to + length, out + hold + fade);
    }
    return mixed;
}

void CAudioModuleInstance::runSplit(int blockLength, int fadeLength)
{
    CArray<CAudioLine*, 32> lines;
    CArray<CSampleBuffer, 32> inputs;
    for (const auto& port : m_active->m_ports) {
        for (CAudioLine* line : port.lines) {
            lines.append(line);
            inputs.append(line->buffer);
        }
    }
    CArray<CSampleBuffer, CAudioProcessPort::kMaxLines> whole;
    for (std::size_t i = 0; i < m_active->m_outputs.size(); ++i) {
        whole.append(m_node.pool().get(blockLength));
    }
    for (int done = 0; done < blockLength;) {
        const int left = blockLength - done;
        const int length = isCutNeeded(left) ? m_holdLeft + m_fadeLeft : left;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            lines[i]->buffer = m_node.pool().get(length);
            std::copy_n(inputs[i].data() + done, length, lines[i]->buffer.data());
        }
        runSegment(length, fadeLength);
        for (std::size_t i = 0; i < whole.size(); ++i) {
            std::copy_n(m_outputs[i].data(), length, whole[i].data() + done);
        }
        done += length;
    }
    for (std::size_t i = 0; i < lines.size(); ++i) {
        lines[i]->buffer = std::move(inputs[i]);
    }
    for (std::size_t i = 0; i < whole.size(); ++i) {
        m_outputs[i] = std::move(whole[i]);
    }
}

} // namespace qrb
