// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CSoundFile.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sndfile.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace render {

namespace {

constexpr int kMaxChannels = 8;

std::string extensionOf(const std::string& path)
{
    const std::size_t slash = path.find_last_of('/');
    const std::size_t dot = path.find_last_of('.');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash))
        return {};
    std::string extension = path.substr(dot + 1);
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension;
}

int containerFor(const std::string& path)
{
    struct CRow {
        std::string_view extension;
        int container;
    };
    static constexpr std::array<CRow, 8> kRows{{{"flac", SF_FORMAT_FLAC},
                                                {"aif", SF_FORMAT_AIFF},
                                                {"aiff", SF_FORMAT_AIFF},
                                                {"au", SF_FORMAT_AU},
                                                {"caf", SF_FORMAT_CAF},
                                                {"w64", SF_FORMAT_W64},
                                                {"rf64", SF_FORMAT_RF64},
                                                {"wav", SF_FORMAT_WAV}}};
    const std::string extension = extensionOf(path);
    const auto row = std::find_if(kRows.begin(), kRows.end(), [&](const CRow& r) { return r.extension == extension; });
    return row == kRows.end() ? SF_FORMAT_WAV : row->container;
}

int sampleFormat(EFileFormat format)
{
    switch (format) {
    case EFileFormat::float64:
        return SF_FORMAT_DOUBLE;
    case EFileFormat::pcm16:
        return SF_FORMAT_PCM_16;
    case EFileFormat::pcm24:
        return SF_FORMAT_PCM_24;
    case EFileFormat::float32:
        break;
    }
    return SF_FORMAT_FLOAT;
}

} // namespace

void CSoundFileCloser::operator()(sf_private_tag* file) const
{
    sf_close(file);
}

bool CSoundFileReader::open(const std::string& path, std::string& error)
{
    struct stat info {};
    if (stat(path.c_str(), &info) != 0) {
        error = "cannot read '" + path + "': " + std::strerror(errno);
        return false;
    }
    if (S_ISDIR(info.st_mode)) {
        error = "cannot read '" + path + "': it is a folder";
        return false;
    }
    if (S_ISREG(info.st_mode) && info.st_size == 0) {
        error = "'" + path + "' is empty";
        return false;
    }
    SF_INFO format{};
    m_file.reset(sf_open(path.c_str(), SFM_READ, &format));
    if (!m_file) {
        error = "cannot read '" + path + "': " + sf_strerror(nullptr);
        return false;
    }
    if (format.channels < 1 || format.channels > kMaxChannels) {
        error = "'" + path + "' has " + std::to_string(format.channels) + " channels; 1 to 8 can be processed";
        return false;
    }
    if (format.frames <= 0) {
        error = "'" + path + "' holds no audio";
        return false;
    }
    m_channels = format.channels;
    m_sampleRate = format.samplerate;
    m_frames = static_cast<std::uint64_t>(format.frames);
    return true;
}

std::size_t CSoundFileReader::read(double* interleaved, std::size_t frames)
{
    const sf_count_t got = sf_readf_double(m_file.get(), interleaved, static_cast<sf_count_t>(frames));
    return got > 0 ? static_cast<std::size_t>(got) : 0;
}

bool CSoundFileReader::rewind()
{
    return sf_seek(m_file.get(), 0, SEEK_SET) == 0;
}

CSoundFileWriter::~CSoundFileWriter()
{
    m_file.reset();
    if (!m_temporaryPath.empty())
        std::remove(m_temporaryPath.c_str());
}

bool CSoundFileWriter::open(const std::string& path, int channels, double sampleRate, EFileFormat format,
                            std::string& error)
{
    SF_INFO info{};
    info.channels = channels;
    info.samplerate = static_cast<int>(sampleRate);
    info.format = containerFor(path) | sampleFormat(format);
    if (!sf_format_check(&info)) {
        error = "'" + path + "' cannot hold " + std::to_string(channels) + " channels in this format";
        return false;
    }
    struct stat existing {};
    if (stat(path.c_str(), &existing) == 0 && !S_ISREG(existing.st_mode)) {
        error = "cannot write '" + path + "': it is not a regular file"; // a rename would put a file in its place
        return false;
    }
    std::string temporary = path + ".XXXXXX";
    const int descriptor = mkstemp(temporary.data());
    if (descriptor < 0) {
        error = "cannot write '" + path + "': " + std::strerror(errno);
        return false;
    }
    m_temporaryPath = temporary;
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(descriptor, 0666 & ~mask);
    m_file.reset(sf_open_fd(descriptor, SFM_WRITE, &info, SF_TRUE));
    if (!m_file) {
        error = "cannot write '" + path + "': " + sf_strerror(nullptr);
        return false;
    }
    // Samples beyond full scale are limited in the integer formats, where they would otherwise wrap around.
    sf_command(m_file.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
    m_path = path;
    m_channels = channels;
    return true;
}

bool CSoundFileWriter::write(std::span<const double> interleaved, std::string& error)
{
    const auto frames = static_cast<sf_count_t>(interleaved.size() / static_cast<std::size_t>(m_channels));
    if (sf_writef_double(m_file.get(), interleaved.data(), frames) == frames)
        return true;
    error = "cannot write '" + m_path + "': " + sf_strerror(m_file.get());
    return false;
}

bool CSoundFileWriter::finish(std::string& error)
{
    sf_write_sync(m_file.get());
    const int pending = sf_error(m_file.get());
    const int closed = sf_close(m_file.release());
    if (pending != 0 || closed != 0) {
        error = "cannot write '" + m_path + "': " + sf_error_number(pending != 0 ? pending : closed);
        return false;
    }
    if (std::rename(m_temporaryPath.c_str(), m_path.c_str()) != 0) {
        error = "cannot write '" + m_path + "': " + std::strerror(errno);
        return false;
    }
    m_temporaryPath.clear();
    return true;
}

} // namespace render
