// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CRenderJob.h"

#include "Audio/CAudioParamCollector.h"
#include "Platform/Clock.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace render {

void CRenderJob::CHostBuffers::setShape(int channelCount, std::size_t frames, bool useDouble)
{
    channels = channelCount;
    isDouble = useDouble;
    const auto count = static_cast<std::size_t>(channelCount);
    doubles.assign(isDouble ? count : 0, std::vector<double>(frames));
    floats.assign(isDouble ? 0 : count, std::vector<float>(frames));
    pointers.resize(count);
    for (std::size_t channel = 0; channel < count; ++channel)
        pointers[channel] = isDouble ? static_cast<void*>(doubles[channel].data()) : floats[channel].data();
}

void CRenderJob::CHostBuffers::take(std::span<const double> interleaved, std::size_t frames)
{
    const auto stride = static_cast<std::size_t>(channels);
    for (std::size_t channel = 0; channel < stride; ++channel)
        for (std::size_t frame = 0; frame < frames; ++frame) {
            const double sample = interleaved[frame * stride + channel];
            if (isDouble)
                doubles[channel][frame] = sample;
            else
                floats[channel][frame] = static_cast<float>(sample);
        }
}

void CRenderJob::CHostBuffers::give(std::vector<double>& interleaved, std::size_t frames) const
{
    const auto stride = static_cast<std::size_t>(channels);
    interleaved.resize(frames * stride);
    for (std::size_t channel = 0; channel < stride; ++channel)
        for (std::size_t frame = 0; frame < frames; ++frame)
            interleaved[frame * stride + channel] =
                isDouble ? doubles[channel][frame] : static_cast<double>(floats[channel][frame]);
}

bool CRenderJob::openInputs(std::string& error)
{
    if (!m_options.inFile.empty() && !m_in.open(m_options.inFile, error))
        return false;
    if (m_options.sidechainFile.empty())
        return true;
    if (!m_sidechain.open(m_options.sidechainFile, error))
        return false;
    if (m_in.channels() > 0 && m_sidechain.sampleRate() != m_in.sampleRate()) {
        error = "'" + m_options.sidechainFile + "' has another sample rate than '" + m_options.inFile + "'";
        return false;
    }
    return true;
}

bool CRenderJob::prepare(std::string& error)
{
    if (qrb::CErrorPtr failed = m_instance.init()) {
        error = "the instance cannot be built: " + failed->line(0).toUtf8();
        return false;
    }
    const int channels = m_in.channels() > 0 ? m_in.channels() : 2;
    const double rate = m_in.channels() > 0 ? m_in.sampleRate() : m_options.sampleRate;
    const int keys = m_sidechain.channels();
    m_inBuffers.setShape(channels, m_options.blockSize, m_options.useDouble);
    m_outBuffers.setShape(channels, m_options.blockSize, m_options.useDouble);
    m_sidechainBuffers.setShape(keys, m_options.blockSize, m_options.useDouble);

    m_instance.setSampleRate(rate);
    m_instance.setOffline(true);
    m_instance.setInputs({channels, m_options.useDouble, false}, {keys, m_options.useDouble, false},
                         m_sidechainBuffers.pointers.data());
    m_instance.setOutputs({channels, m_options.useDouble, false});
    m_instance.start(); // parameters of nodes get their definitions with the nodes
    if (!applySettings(error))
        return false;
    m_instance.stop(); // what was set is in force from the first sample, with nothing fading
    m_instance.start();
    m_instance.paramCollector().runDeferred();
    return collectEvents(error);
}

bool CRenderJob::applySettings(std::string& error)
{
    if (!m_presets.activate(m_instance, error))
        return false;
    std::vector<CSetting> told = m_options.sets;
    told.insert(told.end(), m_options.events.begin(), m_options.events.end());
    if (!m_presets.tellsRouting())
        m_instance.routeChannels(m_inBuffers.channels + m_sidechainBuffers.channels, told);
    for (const CSetting& setting : m_options.sets)
        if (!m_instance.apply(setting, error))
            return false;
    return true;
}

bool CRenderJob::collectEvents(std::string& error)
{
    for (const CSetting& setting : m_options.events) {
        CRenderInstance::CTarget target;
        if (!m_instance.resolve(setting, target, error))
            return false;
        const double frame = std::floor(setting.seconds * m_in.sampleRate() + 0.5);
        if (m_in.channels() > 0 && frame >= static_cast<double>(m_in.frames())) {
            char time[32];
            std::snprintf(time, sizeof time, "%g", setting.seconds);
            error = std::string("--at ") + time + " lies behind the end of '" + m_options.inFile + "'";
            return false;
        }
        m_events.push_back({static_cast<std::uint64_t>(frame), m_instance.addTarget(target), target.value});
    }
    std::stable_sort(m_events.begin(), m_events.end(),
                     [](const CTimedEvent& a, const CTimedEvent& b) { return a.frame < b.frame; });
    return true;
}

std::size_t CRenderJob::readBlock(CSoundFileReader& file, std::vector<double>& samples, std::size_t frames)
{
    const auto stride = static_cast<std::size_t>(file.channels());
    samples.assign(frames * stride, 0.0);
    return stride > 0 ? file.read(samples.data(), frames) : 0;
}

void CRenderJob::queueEvents(std::uint64_t position, std::size_t frames)
{
    for (; m_nextEvent < m_events.size() && m_events[m_nextEvent].frame < position + frames; ++m_nextEvent) {
        const CTimedEvent& event = m_events[m_nextEvent];
        m_instance.addEvent(
            {static_cast<int>(event.frame - position), qrb::EExternalEventKind::parameter, event.index, event.value});
    }
}

void CRenderJob::processBlock(std::size_t frames)
{
    const double start = qrb::platform::clockSeconds();
    m_instance.processBlock(m_inBuffers.pointers.data(), m_outBuffers.pointers.data(), static_cast<int>(frames));
    m_summary.seconds += qrb::platform::clockSeconds() - start;
    m_instance.paramCollector().runDeferred();
}

bool CRenderJob::render(std::string& error)
{
    CSoundFileWriter out;
    if (!out.open(m_options.outFile, m_in.channels(), m_in.sampleRate(), m_options.format, error))
        return false;
    const auto latency = static_cast<std::uint64_t>(m_instance.getLatencySamples());
    const auto stride = static_cast<std::size_t>(m_in.channels());
    const std::uint64_t total = m_in.frames() + latency; // silence drives the last samples out
    std::uint64_t toDrop = m_options.isRaw ? 0 : latency;
    CProgressBar progress;
    std::vector<double> samples;
    std::vector<double> keys;
    for (std::uint64_t position = 0; position < total;) {
        const auto frames = static_cast<std::size_t>(std::min<std::uint64_t>(m_options.blockSize, total - position));
        const auto own = position < m_in.frames() ? std::min<std::uint64_t>(frames, m_in.frames() - position) : 0;
        if (readBlock(m_in, samples, frames) < own) {
            progress.clear();
            error = "'" + m_options.inFile + "' is damaged: its data ends early";
            return false;
        }
        readBlock(m_sidechain, keys, frames);
        m_summary.in.add(std::span(samples).first(static_cast<std::size_t>(own) * stride));
        m_inBuffers.take(samples, frames);
        m_sidechainBuffers.take(keys, frames);
        queueEvents(position, frames);
        processBlock(frames);
        m_outBuffers.give(samples, frames);
        const auto dropped = static_cast<std::size_t>(std::min<std::uint64_t>(toDrop, frames));
        toDrop -= dropped;
        const std::span<const double> kept = std::span(samples).subspan(dropped * stride);
        m_summary.out.add(kept);
        if (!out.write(kept, error))
            return false;
        position += frames;
        progress.show(static_cast<double>(position) / static_cast<double>(total));
    }
    progress.clear();
    return out.finish(error);
}

void CRenderJob::printList()
{
    const std::vector<CRenderInstance::CParamText> list = m_instance.listParams();
    if (m_options.isJson) {
        std::printf("[");
        for (std::size_t i = 0; i < list.size(); ++i) {
            const auto& p = list[i];
            std::printf("%s\n  {\"path\": %s, \"groups\": %d, \"elements\": %d, \"value\": %s, \"min\": %s, "
                        "\"max\": %s, \"default\": %s, \"unit\": %s}",
                        i > 0 ? "," : "", jsonString(p.path).c_str(), p.groups, p.elements,
                        jsonString(p.values).c_str(), jsonString(p.min).c_str(), jsonString(p.max).c_str(),
                        jsonString(p.defaults).c_str(), jsonString(p.unit).c_str());
        }
        std::printf("\n]\n");
        return;
    }
    std::size_t width = 0;
    for (const auto& p : list)
        width = std::max(width, p.path.size());
    for (const auto& p : list) {
        std::printf("%-*s  %d x %d  %s", static_cast<int>(width), p.path.c_str(), p.groups, p.elements,
                    p.values.c_str());
        if (!p.min.empty())
            std::printf("  (%s to %s%s%s)", p.min.c_str(), p.max.c_str(), p.unit.empty() ? "" : " ", p.unit.c_str());
        std::printf("  default %s\n", p.defaults.c_str());
    }
}

bool CRenderJob::run(std::string& error)
{
    if (!openInputs(error) || !m_presets.readFiles(error) || !prepare(error))
        return false;
    if (m_options.task == ETask::presets) {
        m_presets.print(m_instance);
        return true;
    }
    if (!m_presets.take(m_instance, error))
        return false;
    if (m_options.task == ETask::list) {
        printList();
        return true;
    }
    if (m_options.task == ETask::latency) {
        std::printf(m_options.isJson ? "{\"latency\": %d}\n" : "%d\n", m_instance.getLatencySamples());
        return true;
    }
    if (m_options.task == ETask::save)
        return m_presets.save(error);
    if (!render(error) || !m_presets.save(error))
        return false;
    m_summary.inFile = m_options.inFile;
    m_summary.outFile = m_options.outFile;
    m_summary.channels = m_in.channels();
    m_summary.sampleRate = m_in.sampleRate();
    m_summary.frames = m_in.frames();
    m_summary.blockSize = m_options.blockSize;
    m_summary.latency = m_instance.getLatencySamples();
    m_options.isJson ? printSummaryJson(stdout, m_summary) : printSummary(stdout, m_summary);
    return true;
}

} // namespace render
