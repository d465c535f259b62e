// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/VST/CModuleFile.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

CModuleFile::CModuleFile() : m_handle(dlopen(THUMPCRAFT_MODULE, RTLD_NOW | RTLD_LOCAL))
{
    EXPECT_NE(m_handle, nullptr) << dlerror();
    if (m_handle == nullptr)
        return;
    EXPECT_TRUE(reinterpret_cast<bool (*)(void*)>(find("ModuleEntry"))(m_handle));
    m_factory = reinterpret_cast<Steinberg::IPluginFactory* (*)()>(find("GetPluginFactory"))();
    EXPECT_NE(m_factory, nullptr);
}

CModuleFile::~CModuleFile()
{
    if (m_handle == nullptr)
        return;
    m_factory->release();
    EXPECT_TRUE(reinterpret_cast<bool (*)()>(find("ModuleExit"))());
    dlclose(m_handle);
}

void* CModuleFile::find(const char* name) const
{
    return dlsym(m_handle, name);
}

bool CModuleFile::isLoaded()
{
    void* const handle = dlopen(THUMPCRAFT_MODULE, RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr)
        dlclose(handle);
    return handle != nullptr;
}
