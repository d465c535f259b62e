// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/Render/CRenderInstance.h"
#include "Tools/Render/CRenderOptions.h"
#include "Tools/Render/CRenderPresets.h"
#include "Tools/Render/CRenderReport.h"
#include "Tools/Render/CSoundFile.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace render {

/// One rendering: input files through an instance into an output file, as an offline host would do it.
class CRenderJob {
public:
    explicit CRenderJob(const CRenderOptions& options) : m_options(options), m_presets(options) {}

    /// Does what the options ask for. False with one line in `error`; no output file is left behind then.
    [[nodiscard]] bool run(std::string& error);

private:
    /// Samples of one host block, in the format the host is told to have: one array a channel.
    struct CHostBuffers {
        void setShape(int channelCount, std::size_t frames, bool isDouble);
        void take(std::span<const double> interleaved, std::size_t frames);
        void give(std::vector<double>& interleaved, std::size_t frames) const;

        int channels = 0;
        bool isDouble = false;
        std::vector<std::vector<double>> doubles;
        std::vector<std::vector<float>> floats;
        std::vector<void*> pointers;
    };

    struct CTimedEvent {
        std::uint64_t frame = 0;
        int index = 0;
        double value = 0.0;
    };

    [[nodiscard]] bool openInputs(std::string& error);
    [[nodiscard]] bool prepare(std::string& error);
    [[nodiscard]] bool applySettings(std::string& error);
    [[nodiscard]] bool collectEvents(std::string& error);
    [[nodiscard]] bool render(std::string& error);
    /// Reads a block, silence behind the file's end. Gives the frames that came from the file.
    std::size_t readBlock(CSoundFileReader& file, std::vector<double>& samples, std::size_t frames);
    void queueEvents(std::uint64_t position, std::size_t frames);
    void processBlock(std::size_t frames);
    void printList();

    const CRenderOptions& m_options;
    CRenderInstance m_instance;
    CRenderPresets m_presets;
    CSoundFileReader m_in;
    CSoundFileReader m_sidechain;
    std::vector<CTimedEvent> m_events; ///< by frame, equal frames in the order given
    std::size_t m_nextEvent = 0;
    CHostBuffers m_inBuffers;
    CHostBuffers m_sidechainBuffers;
    CHostBuffers m_outBuffers;
    CRenderSummary m_summary;
};

} // namespace render
