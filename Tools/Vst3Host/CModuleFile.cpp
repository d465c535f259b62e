// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Vst3Host/CModuleFile.h"

#include <dlfcn.h>
#include <filesystem>

namespace vst3 {

namespace {

namespace fs = std::filesystem;

/// The shared object for this kind of machine within a bundle; other paths as they are. With the folder, so that no search
/// path of the system comes in.
fs::path sharedObjectOf(const fs::path& path)
{
    std::error_code ignored;
    const fs::path whole = fs::absolute(path, ignored).lexically_normal();
    const fs::path named = whole.has_filename() ? whole : whole.parent_path();
    if (!fs::is_directory(named, ignored))
        return named;
    return named / "Contents" / "x86_64-linux" / (named.stem().string() + ".so");
}

} // namespace

CModuleFile::CModuleFile(const std::string& path, std::string& error)
{
    const fs::path sharedObject = sharedObjectOf(path);
    std::error_code ignored;
    if (!fs::is_regular_file(sharedObject, ignored)) {
        error = "there is no module '" + sharedObject.string() + "'";
        return;
    }
    m_handle = dlopen(sharedObject.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (m_handle == nullptr) {
        const char* const reason = dlerror();
        error = "'" + path + "' cannot be loaded: " + (reason != nullptr ? reason : "unknown reason");
    } else if (!start(error)) {
        error = "'" + path + "' " + error;
    }
}

bool CModuleFile::start(std::string& error)
{
    auto* const getFactory = reinterpret_cast<Steinberg::IPluginFactory* (*)()>(find("GetPluginFactory"));
    if (find("ModuleEntry") == nullptr || getFactory == nullptr || find("ModuleExit") == nullptr) {
        error = "is no VST 3 module";
        return false;
    }
    m_factory = enter() ? getFactory() : nullptr;
    if (m_factory == nullptr)
        error = "does not start";
    return m_factory != nullptr;
}

CModuleFile::~CModuleFile()
{
    if (m_factory != nullptr)
        m_factory->release();
    while (m_entryCount > 0 && leave()) {
    }
    if (m_handle != nullptr)
        dlclose(m_handle);
}

bool CModuleFile::enter()
{
    const bool isEntered = reinterpret_cast<bool (*)(void*)>(find("ModuleEntry"))(m_handle);
    m_entryCount += isEntered ? 1 : 0;
    return isEntered;
}

bool CModuleFile::leave()
{
    const bool isLeft = reinterpret_cast<bool (*)()>(find("ModuleExit"))();
    m_entryCount -= isLeft ? 1 : 0;
    return isLeft;
}

void* CModuleFile::find(const char* name) const
{
    return m_handle != nullptr ? dlsym(m_handle, name) : nullptr;
}

bool CModuleFile::isLoaded(const std::string& sharedObject)
{
    void* const handle = dlopen(sharedObject.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr)
        dlclose(handle);
    return handle != nullptr;
}

} // namespace vst3
