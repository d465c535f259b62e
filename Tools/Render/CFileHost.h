// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/Render/CHostBuffers.h"
#include "Tools/Render/CHostOptions.h"
#include "Tools/Render/CRenderInstance.h"
#include "Tools/Render/CRenderPresets.h"
#include "Tools/Render/CSoundFile.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace render {

/// An instance, set up as a command line tells, and the files that it plays: what a host of any tool does.
/// Thread: the owner's, where not said otherwise.
class CFileHost {
public:
    explicit CFileHost(const CHostOptions& options) : m_options(options), m_presets(options) {}

    /// Opens the files and reads those of presets. False with one line in `error`.
    [[nodiscard]] bool open(std::string& error);
    /// Builds the instance and starts it with all settings in force. False with one line in `error`.
    [[nodiscard]] bool prepare(bool isOffline, std::string& error);

    /// Plays the next samples, at most a block of the options; behind a file's end it is silent. Gives the frames that
    /// came from the main file. Afterwards the owner has the instance do what the block has put off. Thread: audio.
    std::size_t playBlock(std::size_t frames);
    /// Begins the files anew; events of the command line do not come again. False where a file cannot. Thread: audio.
    [[nodiscard]] bool rewind();

    [[nodiscard]] CRenderInstance& instance() { return m_instance; }
    [[nodiscard]] CRenderPresets& presets() { return m_presets; }
    [[nodiscard]] const CSoundFileReader& file() const { return m_in; }
    [[nodiscard]] int channelCount() const { return m_in.channels() > 0 ? m_in.channels() : 2; }
    /// Hertz.
    [[nodiscard]] double sampleRate() const { return m_in.channels() > 0 ? m_in.sampleRate() : m_options.sampleRate; }

    // Of the last block. Thread: audio.

    /// Samples of the main file, interleaved.
    [[nodiscard]] std::span<const double> input() const { return m_samples; }
    void output(std::vector<double>& interleaved, std::size_t frames) const { m_outBuffers.give(interleaved, frames); }
    /// Seconds spent in the instance's processing so far.
    [[nodiscard]] double processingSeconds() const { return m_seconds; }

private:
    struct CTimedEvent {
        std::uint64_t frame = 0;
        int index = 0;
        double value = 0.0;
    };

    [[nodiscard]] bool applySettings(std::string& error);
    [[nodiscard]] bool collectEvents(std::string& error);
    /// Reads a block, silence behind the file's end. Gives the frames that came from the file.
    static std::size_t readBlock(CSoundFileReader& file, std::vector<double>& samples, std::size_t frames);
    void queueEvents(std::uint64_t position, std::size_t frames);

    const CHostOptions& m_options;
    CRenderInstance m_instance;
    CRenderPresets m_presets;
    CSoundFileReader m_in;
    CSoundFileReader m_sidechain;
    std::vector<CTimedEvent> m_events; ///< by frame, equal frames in the order given
    std::size_t m_nextEvent = 0;
    std::uint64_t m_position = 0; ///< frames played
    std::vector<double> m_samples;
    std::vector<double> m_keys;
    CHostBuffers m_inBuffers;
    CHostBuffers m_sidechainBuffers;
    CHostBuffers m_outBuffers;
    double m_seconds = 0.0;
};

} // namespace render
