// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamUpdate.h"
#include "Core/CUpdateInfo.h"

namespace qrb {

class CAudioParam;

/// What listeners of a parameter get. They are called with the instance's parameters held, so they do short work or mark
/// something for later.
struct CAudioParamUpdateInfo : CUpdateInfo {
    CAudioParam* param = nullptr;
    CAudioParamUpdate update; ///< valid during the call; its source is also the sender
};

} // namespace qrb
