// SPDX-License-Identifier: GPL-3.0-or-later
// The doors of the module.
#include "Audio/AudioCreators.h"
#include "Audio/VST/CPluginFactoryVST3.h"
#include "Core/CModule.h"

#include <atomic>
#include <productResources.h>

#define QRB_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

std::atomic<int> entryCount{0}; // a host that leaves more often than it came is not followed

} // namespace

QRB_EXPORT bool ModuleEntry(void*)
{
    qrb::CModuleConfig config;
    config.creators.append(qrb::audioCreators());
    config.resources.append(qrb::productResources());
    config.sharedDocument = "SharedData.xml";
    if (qrb::CErrorPtr failed = qrb::CModule::enter(config))
        return false;
    ++entryCount;
    return true;
}

QRB_EXPORT bool ModuleExit()
{
    int count = entryCount.load();
    while (count > 0 && !entryCount.compare_exchange_weak(count, count - 1)) {
    }
    if (count < 1)
        return false;
    qrb::CModule::leave();
    return true;
}

QRB_EXPORT Steinberg::IPluginFactory* PLUGIN_API GetPluginFactory()
{
    return qrb::CPluginFactoryVST3::get();
}

namespace {

/// Behind the destructors of all static objects, by its priority.
[[gnu::destructor(101)]] void onUnload()
{
    qrb::CModule::unload();
}

} // namespace
