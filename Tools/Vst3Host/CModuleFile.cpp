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
    } else if (!enter(error)) {
        error = "'" + path + "' " + error;
    }
}

bool CModuleFile::enter(std::string& error)
{
    auto* const entry = reinterpret_cast<bool (*)(void*)>(find("ModuleEntry"));
    auto* const getFactory = reinterpret_cast<Steinberg::IPluginFactory* (*)()>(find("GetPluginFactory"));
    if (entry == nullptr || getFactory == nullptr || find("ModuleExit") == nullptr) {
        error = "is no VST 3 module";
        return false;
    }
    m_isEntered = entry(m_handle);
    m_factory = m_isEntered ? getFactory() : nullptr;
    if (m_factory == nullptr)
        error = "does not start";
    return m_factory != nullptr;
}

CModuleFile::~CModuleFile()
{
    if (m_factory != nullptr)
        m_factory->release();
    if (m_isEntered)
        reinterpret_cast<bool (*)()>(find("ModuleExit"))();
    if (m_handle != nullptr)
        dlclose(m_handle);
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
