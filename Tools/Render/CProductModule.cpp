// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CProductModule.h"

#include <productResources.h>

namespace render {

CProductModule::CProductModule(std::string& error)
    : CDocumentModule(product::CDataFiles{qrb::productResources(), {}}, error)
{
}

} // namespace render
