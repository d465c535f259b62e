// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CRenderJob.h"

#include "Tools/DocCompiler/ToolFiles.h"
#include "Tools/Render/CFileHost.h"
#include "Tools/Render/CModuleHost.h"

#include <algorithm>
#include <cstdio>

namespace render {

CRenderJob::CRenderJob(const CRenderOptions& options) : m_options(options)
{
    if (options.moduleFile.empty())
        m_player = std::make_unique<CFileHost>(options);
    else
        m_player = std::make_unique<CModuleHost>(options, options.moduleFile);
}

CRenderJob::~CRenderJob() = default;

bool CRenderJob::render(std::string& error)
{
    const CSoundFileReader& in = m_player->file();
    CSoundFileWriter out;
    if (!out.open(m_options.outFile, in.channels(), in.sampleRate(), m_options.format, error))
        return false;
    const auto latency = static_cast<std::uint64_t>(m_player->latency());
    const auto stride = static_cast<std::size_t>(in.channels());
    const std::uint64_t total = in.frames() + latency; // silence drives the last samples out
    std::uint64_t toDrop = m_options.isRaw ? 0 : latency;
    CProgressBar progress;
    std::vector<double> samples;
    for (std::uint64_t position = 0; position < total;) {
        const auto frames = static_cast<std::size_t>(std::min<std::uint64_t>(m_options.blockSize, total - position));
        const auto own = position < in.frames() ? std::min<std::uint64_t>(frames, in.frames() - position) : 0;
        if (m_player->playBlock(frames) < own) {
            progress.clear();
            error = "'" + m_options.inFile + "' is damaged: its data ends early";
            return false;
        }
        m_player->runOwner();
        m_summary.in.add(m_player->input().first(static_cast<std::size_t>(own) * stride));
        m_player->output(samples, frames);
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
    if (!m_player->failure().empty()) {
        error = "the module has refused: " + m_player->failure();
        return false;
    }
    return out.finish(error);
}

bool CRenderJob::takeSaves(std::string& error)
{
    return (m_options.savePresetFile.empty() || m_player->savePreset(m_preset, error)) &&
           (m_options.saveStateFile.empty() || m_player->saveState(m_state, error));
}

bool CRenderJob::writeSaves(std::string& error) const
{
    if (!m_options.savePresetFile.empty())
        error = qrbdoc::writeFileWhole(m_options.savePresetFile, m_preset);
    if (error.empty() && !m_options.saveStateFile.empty())
        error = qrbdoc::writeFileWhole(m_options.saveStateFile, m_state);
    return error.empty();
}

bool CRenderJob::run(std::string& error)
{
    if (!m_player->open(error) || !m_player->prepare(true, error))
        return false;
    if (m_options.task == ETask::presets) {
        printPresets(stdout, m_player->listPresets(), m_options.isJson);
        return true;
    }
    if (!takeSaves(error))
        return false;
    if (m_options.task == ETask::list) {
        printList(stdout, m_player->listParams(), m_options.isJson);
        return true;
    }
    if (m_options.task == ETask::latency) {
        std::printf(m_options.isJson ? "{\"latency\": %d}\n" : "%d\n", m_player->latency());
        return true;
    }
    if (m_options.task == ETask::render && !render(error))
        return false;
    if (!writeSaves(error))
        return false;
    if (m_options.task == ETask::render)
        printSummary();
    return true;
}

void CRenderJob::printSummary()
{
    m_summary.inFile = m_options.inFile;
    m_summary.outFile = m_options.outFile;
    m_summary.channels = m_player->file().channels();
    m_summary.sampleRate = m_player->sampleRate();
    m_summary.frames = m_player->file().frames();
    m_summary.blockSize = m_options.blockSize;
    m_summary.latency = m_player->latency();
    m_summary.seconds = m_player->processingSeconds();
    m_options.isJson ? printSummaryJson(stdout, m_summary) : render::printSummary(stdout, m_summary);
}

} // namespace render
