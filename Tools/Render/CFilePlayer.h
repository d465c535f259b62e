// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/Render/CHostBuffers.h"
#include "Tools/Render/CHostOptions.h"
#include "Tools/Render/CSoundFile.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace render {

/// An instance, set up as a command line tells, and the files that it plays: what a host of any tool does, whatever way
/// leads to the instance. Thread: the owner's, where not said otherwise.
class CFilePlayer {
public:
    /// What can be told of a parameter, as a user reads it.
    struct CParamText {
        std::string path; ///< below plugin.modMain, or the name that hosts show
        int groups = 0;
        int elements = 0;
        std::string values; ///< of group 0, joined by commas
        std::string min;    ///< empty for texts
        std::string max;
        std::string defaults;
        std::string unit;
    };
    struct CPresetText {
        std::string name;
        std::string registry;
        bool isCurrent = false;
    };

    explicit CFilePlayer(const CHostOptions& options) : m_options(options) {}
    virtual ~CFilePlayer() = default;
    CFilePlayer(const CFilePlayer&) = delete;
    CFilePlayer& operator=(const CFilePlayer&) = delete;

    /// Opens the files. False with one line in `error`.
    [[nodiscard]] virtual bool open(std::string& error);
    /// Builds the instance and starts it with all settings in force. False with one line in `error`.
    [[nodiscard]] virtual bool prepare(bool isOffline, std::string& error) = 0;

    /// Plays the next samples, at most a block of the options; behind a file's end it is silent. Gives the frames that
    /// came from the main file. Afterwards the owner calls runOwner(). Thread: audio.
    std::size_t playBlock(std::size_t frames);
    /// Does what blocks have put off.
    virtual void runOwner() = 0;
    /// Begins the files anew; events of the command line do not come again. False where a file cannot. Thread: audio.
    [[nodiscard]] bool rewind();

    /// Samples.
    [[nodiscard]] virtual int latency() = 0;
    /// All parameters in the order of their paths, or as the host lists them.
    [[nodiscard]] virtual std::vector<CParamText> listParams() = 0;
    [[nodiscard]] virtual std::vector<CPresetText> listPresets() = 0;
    /// The whole state, as hosts store it. False with one line in `error`.
    [[nodiscard]] virtual bool saveState(std::string& bytes, std::string& error) = 0;
    /// What has gone wrong while blocks were played; empty if nothing has.
    [[nodiscard]] virtual std::string failure() const { return {}; }
    /// The settings as a file of one preset. False with one line in `error`.
    [[nodiscard]] virtual bool savePreset(std::string& bytes, std::string& error) = 0;

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

protected:
    [[nodiscard]] const CHostOptions& options() const { return m_options; }
    [[nodiscard]] int keyCount() const { return m_sidechain.channels(); }
    void prepareBuffers();
    [[nodiscard]] const CHostBuffers& inBuffers() const { return m_inBuffers; }
    [[nodiscard]] const CHostBuffers& keyBuffers() const { return m_keyBuffers; }
    [[nodiscard]] CHostBuffers& outBuffers() { return m_outBuffers; }

    /// Makes an event known: `index` and `value` as queueEvent() gets them. Sorted by sortEvents().
    [[nodiscard]] bool addEvent(const CSetting& setting, int index, double value, std::string& error);
    void sortEvents();
    /// Content of the state's file, empty where there is none.
    [[nodiscard]] const std::string& state() const { return m_state; }

    /// An event of the block that comes. Thread: audio.
    virtual void queueEvent(int offset, int index, double value) = 0;
    /// Plays what lies in the buffers. Thread: audio.
    virtual void processBlock(int frames) = 0;

private:
    struct CTimedEvent {
        std::uint64_t frame = 0;
        int index = 0;
        double value = 0.0;
    };

    /// Reads a block, silence behind the file's end. Gives the frames that came from the file.
    static std::size_t readBlock(CSoundFileReader& file, std::vector<double>& samples, std::size_t frames);
    void queueEvents(std::uint64_t position, std::size_t frames);

    const CHostOptions& m_options;
    CSoundFileReader m_in;
    CSoundFileReader m_sidechain;
    std::string m_state;
    std::vector<CTimedEvent> m_events; ///< by frame, equal frames in the order given
    std::size_t m_nextEvent = 0;
    std::uint64_t m_position = 0; ///< frames played
    std::vector<double> m_samples;
    std::vector<double> m_keys;
    CHostBuffers m_inBuffers;
    CHostBuffers m_keyBuffers;
    CHostBuffers m_outBuffers;
    double m_seconds = 0.0;
};

} // namespace render
