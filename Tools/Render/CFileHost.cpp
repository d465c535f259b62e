// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CFileHost.h"

#include "Audio/CAudioParamCollector.h"
#include "Platform/Clock.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace render {

bool CFileHost::open(std::string& error)
{
    if (!m_options.inFile.empty() && !m_in.open(m_options.inFile, error))
        return false;
    if (m_options.sidechainFile.empty())
        return m_presets.readFiles(error);
    if (!m_sidechain.open(m_options.sidechainFile, error))
        return false;
    if (m_in.channels() > 0 && m_sidechain.sampleRate() != m_in.sampleRate()) {
        error = "'" + m_options.sidechainFile + "' has another sample rate than '" + m_options.inFile + "'";
        return false;
    }
    return m_presets.readFiles(error);
}

bool CFileHost::prepare(bool isOffline, std::string& error)
{
    if (qrb::CErrorPtr failed = m_instance.init()) {
        error = "the instance cannot be built: " + failed->line(0).toUtf8();
        return false;
    }
    const int channels = channelCount();
    const double rate = sampleRate();
    const int keys = m_sidechain.channels();
    m_inBuffers.setShape(channels, m_options.blockSize, m_options.useDouble);
    m_outBuffers.setShape(channels, m_options.blockSize, m_options.useDouble);
    m_sidechainBuffers.setShape(keys, m_options.blockSize, m_options.useDouble);

    m_instance.setSampleRate(rate);
    m_instance.setOffline(isOffline);
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

bool CFileHost::applySettings(std::string& error)
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

bool CFileHost::collectEvents(std::string& error)
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

std::size_t CFileHost::readBlock(CSoundFileReader& file, std::vector<double>& samples, std::size_t frames)
{
    const auto stride = static_cast<std::size_t>(file.channels());
    samples.assign(frames * stride, 0.0);
    return stride > 0 ? file.read(samples.data(), frames) : 0;
}

void CFileHost::queueEvents(std::uint64_t position, std::size_t frames)
{
    for (; m_nextEvent < m_events.size() && m_events[m_nextEvent].frame < position + frames; ++m_nextEvent) {
        const CTimedEvent& event = m_events[m_nextEvent];
        m_instance.addEvent(
            {static_cast<int>(event.frame - position), qrb::EExternalEventKind::parameter, event.index, event.value});
    }
}

std::size_t CFileHost::playBlock(std::size_t frames)
{
    const std::size_t got = readBlock(m_in, m_samples, frames);
    readBlock(m_sidechain, m_keys, frames);
    m_inBuffers.take(m_samples, frames);
    m_sidechainBuffers.take(m_keys, frames);
    queueEvents(m_position, frames);
    const double start = qrb::platform::clockSeconds();
    m_instance.processBlock(m_inBuffers.pointers.data(), m_outBuffers.pointers.data(), static_cast<int>(frames));
    m_seconds += qrb::platform::clockSeconds() - start;
    m_position += frames;
    return got;
}

bool CFileHost::rewind()
{
    return m_in.rewind() && (m_sidechain.channels() == 0 || m_sidechain.rewind());
}

} // namespace render
