// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CObject.h"

namespace qrb {

/// Puts the designer at `fltgen` into the parent array, under `index`.
class CAudioFilterGenArrayItem : public CObject {
public:
    [[nodiscard]] CErrorPtr init() override;
};

} // namespace qrb
