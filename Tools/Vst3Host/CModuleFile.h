// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <pluginterfaces/base/ipluginbase.h>

#include <string>

namespace vst3 {

/// A built module, loaded and entered the way a host does it.
class CModuleFile {
public:
    /// `path` is a bundle's folder or the shared object itself. On failure `error` gets one line and there is no factory.
    CModuleFile(const std::string& path, std::string& error);
    ~CModuleFile();
    CModuleFile(const CModuleFile&) = delete;
    CModuleFile& operator=(const CModuleFile&) = delete;

    /// Null if the module could not be loaded.
    [[nodiscard]] Steinberg::IPluginFactory* factory() const { return m_factory; }
    /// Once more, or once less, than the constructor has; the destructor makes up for it. False if refused.
    bool enter();
    bool leave();
    /// An exported function, or null.
    [[nodiscard]] void* find(const char* name) const;
    /// Whether a shared object is mapped into this process.
    [[nodiscard]] static bool isLoaded(const std::string& sharedObject);

private:
    [[nodiscard]] bool start(std::string& error);

    void* m_handle = nullptr;
    int m_entryCount = 0;
    Steinberg::IPluginFactory* m_factory = nullptr;
};

} // namespace vst3
