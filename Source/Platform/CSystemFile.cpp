// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/CSystemFile.h"

#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace qrb::platform {

static_assert(sizeof(off_t) == sizeof(std::int64_t), "files beyond 2 GiB");

namespace {

int openFlags(EFileMode mode)
{
    switch (mode) {
    case EFileMode::read:
        // Without O_NONBLOCK the opening of a pipe for reading waits for a writer; regular files do not care.
        return O_RDONLY | O_NONBLOCK;
    case EFileMode::rewrite:
        return O_WRONLY | O_CREAT | O_TRUNC;
    case EFileMode::append:
        return O_WRONLY | O_CREAT; // not O_APPEND, under which a position that was set counts for nothing
    case EFileMode::update:
        break;
    }
    return O_RDWR | O_CREAT;
}

} // namespace

CSystemFile::~CSystemFile()
{
    close();
}

CSystemFile::CSystemFile(CSystemFile&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}

CSystemFile& CSystemFile::operator=(CSystemFile&& other) noexcept
{
    if (this != &other) {
        close();
        m_descriptor = std::exchange(other.m_descriptor, -1);
    }
    return *this;
}

int CSystemFile::open(const std::string& path, EFileMode mode)
{
    close();
    const int flags = openFlags(mode);
    int descriptor = -1;
    do {
        descriptor = ::open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY, 0666);
    } while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0)
        return errno;
    m_descriptor = descriptor;
    if (mode == EFileMode::read) {
        struct stat status {};
        const int error = ::fstat(descriptor, &status) != 0 ? errno
                          : S_ISREG(status.st_mode)         ? 0
                          : S_ISDIR(status.st_mode)         ? EISDIR
                                                            : EINVAL;
        if (error != 0) {
            close();
            return error;
        }
        static_cast<void>(::posix_fadvise(descriptor, 0, 0, POSIX_FADV_SEQUENTIAL));
    }
    if (mode == EFileMode::append && ::lseek(descriptor, 0, SEEK_END) < 0 && errno != ESPIPE) {
        const int error = errno;
        close();
        return error;
    }
    return 0;
}

int CSystemFile::openStandard(EStandardStream stream)
{
    close();
    const int standard = stream == EStandardStream::input    ? STDIN_FILENO
                         : stream == EStandardStream::output ? STDOUT_FILENO
                                                             : STDERR_FILENO;
    m_descriptor = ::fcntl(standard, F_DUPFD_CLOEXEC, 0);
    return m_descriptor >= 0 ? 0 : errno;
}

int CSystemFile::close()
{
    if (m_descriptor < 0)
        return 0;
    // The descriptor is gone whatever the outcome says; an interrupted close is not repeated.
    return ::close(std::exchange(m_descriptor, -1)) == 0 ? 0 : errno;
}

int CSystemFile::read(void* data, std::size_t size, std::size_t& count)
{
    count = 0;
    while (count < size) {
        const ssize_t got = ::read(m_descriptor, static_cast<char*>(data) + count, size - count);
        if (got == 0)
            return 0;
        if (got > 0)
            count += static_cast<std::size_t>(got);
        else if (errno != EINTR)
            return errno;
    }
    return 0;
}

int CSystemFile::write(const void* data, std::size_t size)
{
    std::size_t count = 0;
    return write(data, size, count);
}

int CSystemFile::write(const void* data, std::size_t size, std::size_t& count)
{
    count = 0;
    while (count < size) {
        const ssize_t put = ::write(m_descriptor, static_cast<const char*>(data) + count, size - count);
        if (put >= 0)
            count += static_cast<std::size_t>(put);
        else if (errno != EINTR)
            return errno;
    }
    return 0;
}

int CSystemFile::seek(std::uint64_t position)
{
    if (position > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max()))
        return EINVAL;
    return ::lseek(m_descriptor, static_cast<off_t>(position), SEEK_SET) >= 0 ? 0 : errno;
}

int CSystemFile::position(std::uint64_t& bytes) const
{
    const off_t offset = ::lseek(m_descriptor, 0, SEEK_CUR);
    bytes = offset >= 0 ? static_cast<std::uint64_t>(offset) : 0;
    return offset >= 0 ? 0 : errno;
}

int CSystemFile::size(std::uint64_t& bytes) const
{
    struct stat status {};
    bytes = 0;
    if (::fstat(m_descriptor, &status) != 0)
        return errno;
    bytes = static_cast<std::uint64_t>(status.st_size);
    return 0;
}

} // namespace qrb::platform
