// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Viz/CAudioVizData.h"
#include "Core/CString.h"

namespace qrb {

/// A text with a code.
class CAudioVizDataInfo : public CAudioVizData {
public:
    CAudioVizDataInfo() : CAudioVizData(EAudioVizType::info) {}

    CErrorPtr save(COutputStream& out) const override;
    CErrorPtr load(CInputStream& in) override;

    CString text;
    std::int32_t code = 0;
};

} // namespace qrb
