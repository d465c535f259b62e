// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Viz/CAudioVizData.h"
#include "Core/CArray.h"

namespace qrb {

/// A piece of a signal, with marks in it.
class CAudioVizDataVScope : public CAudioVizData {
public:
    CAudioVizDataVScope() : CAudioVizData(EAudioVizType::vScope) {}

    CErrorPtr save(COutputStream& out) const override;
    CErrorPtr load(CInputStream& in) override;

    CArray<double, 0> samples;
    CArray<std::int32_t, 0> marks;
};

} // namespace qrb
