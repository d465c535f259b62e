// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <pluginterfaces/base/ipluginbase.h>

#include <string>

/// The built module, loaded and entered the way a host does it.
class CModuleFile {
public:
    CModuleFile();
    ~CModuleFile();
    CModuleFile(const CModuleFile&) = delete;
    CModuleFile& operator=(const CModuleFile&) = delete;

    [[nodiscard]] Steinberg::IPluginFactory* factory() const { return m_factory; }
    /// An exported function, or null.
    [[nodiscard]] void* find(const char* name) const;
    /// Whether the file is mapped into this process.
    [[nodiscard]] static bool isLoaded();

private:
    void* m_handle = nullptr;
    Steinberg::IPluginFactory* m_factory = nullptr;
};
