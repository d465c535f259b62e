// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace qrb::platform {

enum class EFileMode {
    read,    ///< an existing regular file, for reading
    rewrite, ///< created if missing, emptied otherwise, for writing
    append,  ///< created if missing, for writing behind its end
    update   ///< created if missing, for reading and writing
};

enum class EStandardStream { input, output, error };

/// An open file of the system. Operations give 0 or the system's error number.
class CSystemFile {
public:
    CSystemFile() = default;
    /// Closes; use `close` where the outcome of a write matters.
    ~CSystemFile();

    CSystemFile(const CSystemFile&) = delete;
    CSystemFile& operator=(const CSystemFile&) = delete;
    CSystemFile(CSystemFile&& other) noexcept;
    CSystemFile& operator=(CSystemFile&& other) noexcept;

    /// Closes what was open and opens `path`, which is the system's bytes. Reading refuses what is no regular file, so
    /// that a pipe in the way can't hang its reader.
    [[nodiscard]] int open(const std::string& path, EFileMode mode);
    /// Closes what was open and opens a standard stream of the process; closing it leaves the stream itself open.
    [[nodiscard]] int openStandard(EStandardStream stream);
    [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }
    /// Gives the error of a delayed write, if there was one.
    int close();

    /// Reads up to `size` bytes; `count` gets what came, less than `size` only at the end of the file or on error.
    [[nodiscard]] int read(void* data, std::size_t size, std::size_t& count);
    /// Writes all `size` bytes.
    [[nodiscard]] int write(const void* data, std::size_t size);
    /// The same; `count` gets what was written, less than `size` only on error.
    [[nodiscard]] int write(const void* data, std::size_t size, std::size_t& count);
    /// Goes to a position in bytes from the begin of the file.
    [[nodiscard]] int seek(std::uint64_t position);
    [[nodiscard]] int position(std::uint64_t& bytes) const;
    [[nodiscard]] int size(std::uint64_t& bytes) const;

private:
    int m_descriptor = -1;
};

} // namespace qrb::platform
