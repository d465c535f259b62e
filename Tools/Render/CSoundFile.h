// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tools/Render/CRenderOptions.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

struct sf_private_tag; // libsndfile's SNDFILE

namespace render {

struct CSoundFileCloser {
    void operator()(sf_private_tag* file) const;
};
using CSoundFileHandle = std::unique_ptr<sf_private_tag, CSoundFileCloser>;

/// An audio file read from start to end. Channels are interleaved, full scale is 1.0.
class CSoundFileReader {
public:
    /// Opens `path`. False with one line in `error` if it is missing, unreadable, empty or has no 1 to 8 channels.
    [[nodiscard]] bool open(const std::string& path, std::string& error);

    [[nodiscard]] int channels() const { return m_channels; }
    [[nodiscard]] double sampleRate() const { return m_sampleRate; }
    /// Length in frames, as the file's head tells it.
    [[nodiscard]] std::uint64_t frames() const { return m_frames; }

    /// Reads up to `frames` frames; gives how many came. Fewer than asked for means the end of the data.
    [[nodiscard]] std::size_t read(double* interleaved, std::size_t frames);
    /// Goes back to the first frame. False where that is not possible, as in a pipe.
    [[nodiscard]] bool rewind();

private:
    CSoundFileHandle m_file;
    int m_channels = 0;
    double m_sampleRate = 0.0;
    std::uint64_t m_frames = 0;
};

/// An audio file that appears under its name only when all of it is written: until then it has a temporary name
/// beside it, which goes with this object.
class CSoundFileWriter {
public:
    CSoundFileWriter() = default;
    CSoundFileWriter(const CSoundFileWriter&) = delete;
    CSoundFileWriter& operator=(const CSoundFileWriter&) = delete;
    ~CSoundFileWriter();

    /// Starts the file. The container follows the name's ending, WAV if it tells nothing. False with `error` set.
    [[nodiscard]] bool open(const std::string& path, int channels, double sampleRate, EFileFormat format,
                            std::string& error);
    /// Appends frames. False with `error` set, as on a full disk.
    [[nodiscard]] bool write(std::span<const double> interleaved, std::string& error);
    /// Closes the file and gives it its name. False with `error` set.
    [[nodiscard]] bool finish(std::string& error);

private:
    CSoundFileHandle m_file;
    std::string m_path;
    std::string m_temporaryPath;
    int m_channels = 0;
};

} // namespace render
