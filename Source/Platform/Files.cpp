// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Files.h"

#include <cerrno>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

namespace qrb::platform {

bool fileExists(const std::string& path)
{
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
}

bool directoryExists(const std::string& path)
{
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

int createDirectory(const std::string& path)
{
    return ::mkdir(path.c_str(), 0777) == 0 ? 0 : errno;
}

int removeFile(const std::string& path)
{
    return ::unlink(path.c_str()) == 0 ? 0 : errno;
}

int renameFile(const std::string& from, const std::string& to)
{
    return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

} // namespace qrb::platform
