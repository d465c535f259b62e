// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Interface/CParamInterfaceBaseConnector.h"

namespace qrb {

void CParamInterfaceBaseConnector::declare(CObjectClassInfo& info)
{
    CObject::declare(info);
}

} // namespace qrb
