// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioEnv.h"

namespace qrb {

void CAudioEnv::declare(CObjectClassInfo& info)
{
    CObject::declare(info);
}

} // namespace qrb
