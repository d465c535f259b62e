// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Viz/CAudioVizData.h"

namespace qrb {

/// What a meter shows at the end of a period: linear factors.
class CAudioVizDataMeter : public CAudioVizData {
public:
    CAudioVizDataMeter() : CAudioVizData(EAudioVizType::meter) {}

    CErrorPtr save(COutputStream& out) const override;
    CErrorPtr load(CInputStream& in) override;

    double value = 0.0;
    double peak = 0.0;
};

} // namespace qrb
