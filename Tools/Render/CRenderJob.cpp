// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CRenderJob.h"

#include "Audio/CAudioParamCollector.h"

#include <algorithm>
#include <cstdio>

namespace render {

bool CRenderJob::render(std::string& error)
{
    const CSoundFileReader& in = m_host.file();
    CSoundFileWriter out;
    if (!out.open(m_options.outFile, in.channels(), in.sampleRate(), m_options.format, error))
        return false;
    const auto latency = static_cast<std::uint64_t>(m_host.instance().getLatencySamples());
    const auto stride = static_cast<std::size_t>(in.channels());
    const std::uint64_t total = in.frames() + latency; // silence drives the last samples out
    std::uint64_t toDrop = m_options.isRaw ? 0 : latency;
    CProgressBar progress;
    std::vector<double> samples;
    for (std::uint64_t position = 0; position < total;) {
        const auto frames = static_cast<std::size_t>(std::min<std::uint64_t>(m_options.blockSize, total - position));
        const auto own = position < in.frames() ? std::min<std::uint64_t>(frames, in.frames() - position) : 0;
        if (m_host.playBlock(frames) < own) {
            progress.clear();
            error = "'" + m_options.inFile + "' is damaged: its data ends early";
            return false;
        }
        m_host.instance().paramCollector().runDeferred();
        m_summary.in.add(m_host.input().first(static_cast<std::size_t>(own) * stride));
        m_host.output(samples, frames);
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
    const std::vector<CRenderInstance::CParamText> list = m_host.instance().listParams();
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
    if (!m_host.open(error) || !m_host.prepare(true, error))
        return false;
    if (m_options.task == ETask::presets) {
        m_host.presets().print(m_host.instance(), m_options.isJson);
        return true;
    }
    const bool isSaving = !m_options.savePresetFile.empty();
    if (isSaving && !m_host.presets().take(m_host.instance(), error))
        return false;
    if (m_options.task == ETask::list) {
        printList();
        return true;
    }
    if (m_options.task == ETask::latency) {
        std::printf(m_options.isJson ? "{\"latency\": %d}\n" : "%d\n", m_host.instance().getLatencySamples());
        return true;
    }
    if (m_options.task == ETask::render && !render(error))
        return false;
    if (isSaving && !m_host.presets().save(m_options.savePresetFile, error))
        return false;
    if (m_options.task == ETask::render)
        printSummary();
    return true;
}

void CRenderJob::printSummary()
{
    m_summary.inFile = m_options.inFile;
    m_summary.outFile = m_options.outFile;
    m_summary.channels = m_host.file().channels();
    m_summary.sampleRate = m_host.sampleRate();
    m_summary.frames = m_host.file().frames();
    m_summary.blockSize = m_options.blockSize;
    m_summary.latency = m_host.instance().getLatencySamples();
    m_summary.seconds = m_host.processingSeconds();
    m_options.isJson ? printSummaryJson(stdout, m_summary) : render::printSummary(stdout, m_summary);
}

} // namespace render
