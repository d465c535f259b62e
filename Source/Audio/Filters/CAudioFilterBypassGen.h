// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Filters/CAudioFilterGen.h"

namespace qrb {

/// Designer of no filter: the signal passes.
class CAudioFilterBypassGen : public CAudioFilterGen {
public:
    void design(CAudioFilterStageList&, double, const CAudioFilterParams&, CDCDAWFilterWorkspace*) const override {}
};

} // namespace qrb
