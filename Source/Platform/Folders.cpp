// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Folders.h"

#include "Platform/Files.h"

#include <algorithm>
#include <cstdlib>
#include <dlfcn.h>
#include <link.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace qrb::platform {

namespace {

/// An absolute path of the environment without separators at its end; the base directory rules say to ignore others.
std::string absolutePath(std::string path)
{
    if (path.empty() || path.front() != '/')
        return {};
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

std::string environmentPath(const char* name)
{
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : absolutePath(value);
}

std::string homeFolder()
{
    std::string home = environmentPath("HOME");
    if (!home.empty())
        return home;
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr)
        return {};
    return absolutePath(found->pw_dir);
}

/// Creates what is missing of a path, for the user's eyes alone; true when the folder is there.
bool makeFolders(const std::string& path)
{
    for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        const std::string prefix = path.substr(0, end);
        if (!directoryExists(prefix) && ::mkdir(prefix.c_str(), 0700) != 0 && !directoryExists(prefix))
            return false;
        if (end == std::string::npos)
            return true;
    }
}

} // namespace

std::string CSystemFolders::userDataFolder()
{
    std::string folder = environmentPath("XDG_CONFIG_HOME");
    if (folder.empty()) {
        folder = homeFolder();
        if (folder.empty())
            return {};
        folder += "/.config";
    }
    return makeFolders(folder) ? folder : std::string();
}

std::string CSystemFolders::machineDataFolder()
{
    const char* value = std::getenv("XDG_CONFIG_DIRS");
    const std::string list = value == nullptr ? "" : value;
    for (std::size_t begin = 0; begin < list.size();) {
        const std::size_t end = std::min(list.find(':', begin), list.size());
        const std::string folder = absolutePath(list.substr(begin, end - begin));
        if (!folder.empty())
            return folder;
        begin = end + 1;
    }
    return "/etc/xdg";
}

std::string CSystemFolders::modulePath()
{
    static const char marker = 0;
    Dl_info information{};
    link_map* module = nullptr;
    if (::dladdr1(&marker, &information, reinterpret_cast<void**>(&module), RTLD_DL_LINKMAP) == 0 || module == nullptr)
        return {};
    // The loader gives a program no name of its own.
    const char* name = module->l_name != nullptr && *module->l_name != '\0' ? module->l_name : "/proc/self/exe";
    char* resolved = ::realpath(name, nullptr);
    if (resolved == nullptr)
        return {};
    const std::string path = resolved;
    std::free(resolved);
    const std::size_t separator = path.rfind('/');
    return separator == std::string::npos ? std::string() : path.substr(0, separator == 0 ? 1 : separator);
}

} // namespace qrb::platform
