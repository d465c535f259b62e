// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Product/CDocumentModule.h"

#include "Audio/AudioCreators.h"
#include "Core/CModule.h"
#include "Platform/Folders.h"

#include <utility>

namespace product {

namespace {

/// What a tool does follows from its command line alone.
class CNoFolders : public qrb::platform::IFolders {
public:
    [[nodiscard]] std::string userDataFolder() override { return {}; }
    [[nodiscard]] std::string machineDataFolder() override { return {}; }
    [[nodiscard]] std::string modulePath() override { return {}; }
};

CNoFolders noFolders;

} // namespace

CDocumentModule::CDocumentModule(CDataFiles files, std::string& error) : m_files(std::move(files))
{
    qrb::CModuleConfig config;
    config.creators.append(qrb::audioCreators());
    for (const std::span<const qrb::CResourceRow> table : m_files.linked)
        config.resources.append(table);
    for (const auto& [name, bytes] : m_files.read)
        config.resourceBytes.insert_or_assign(qrb::CString::fromUtf8(name), std::span<const std::uint8_t>(bytes));
    config.sharedDocument = kDocument;
    config.folders = &noFolders;
    if (qrb::CErrorPtr failed = qrb::CModule::enter(config)) {
        error = "the product's definitions do not load: " + failed->line(0).toUtf8();
        return;
    }
    m_isEntered = true;
}

CDocumentModule::~CDocumentModule()
{
    if (m_isEntered)
        qrb::CModule::leave();
}

} // namespace product
