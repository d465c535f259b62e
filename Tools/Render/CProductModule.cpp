// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CProductModule.h"

#include "Audio/AudioCreators.h"
#include "Core/CModule.h"
#include "Platform/Folders.h"

#include <productResources.h>

namespace render {

namespace {

/// Neither reads nor changes the user's settings: a rendering is what its command line says.
class CNoFolders : public qrb::platform::IFolders {
public:
    [[nodiscard]] std::string userDataFolder() override { return {}; }
    [[nodiscard]] std::string machineDataFolder() override { return {}; }
    [[nodiscard]] std::string modulePath() override { return {}; }
};

CNoFolders noFolders;

} // namespace

CProductModule::CProductModule(std::string& error)
{
    qrb::CModuleConfig config;
    config.creators.append(qrb::audioCreators());
    config.resources.append(qrb::productResources());
    config.sharedDocument = "SharedData.xml";
    config.folders = &noFolders;
    if (qrb::CErrorPtr failed = qrb::CModule::enter(config)) {
        error = "the product's definitions do not load: " + failed->line(0).toUtf8();
        return;
    }
    m_isEntered = true;
}

CProductModule::~CProductModule()
{
    if (m_isEntered)
        qrb::CModule::leave();
}

} // namespace render
