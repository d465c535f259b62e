// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Viz/CAudioVizData.h"

#include <array>

namespace qrb {

/// A colour that follows the audio: red, green and blue.
class CAudioVizDataRGB : public CAudioVizData {
public:
    CAudioVizDataRGB() : CAudioVizData(EAudioVizType::rgb) {}

    CErrorPtr save(COutputStream& out) const override;
    CErrorPtr load(CInputStream& in) override;

    std::array<double, 3> components{};
};

} // namespace qrb
