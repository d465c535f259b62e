// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamData.h"
#include "Core/CArray.h"

namespace qrb {

/// Keeps what a record refers to while the record is on its way.
class CAudioParamUpdateHolder : public CCheckedObject {
public:
    CArray<double, 4> values;
    CAudioParamData data;
};

} // namespace qrb
