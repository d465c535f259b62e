// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CProductModule.h"

#include <productResources.h>

namespace render {

CProductModule::CProductModule(std::string& error, std::span<const qrb::CResourceRow> own)
    : CDocumentModule(product::CDataFiles{{qrb::productResources(), own}, {}}, error)
{
}

} // namespace render
