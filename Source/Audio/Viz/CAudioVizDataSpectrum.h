// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Viz/CAudioVizData.h"
#include "Core/CArray.h"

namespace qrb {

/// Magnitudes of a spectrum, from DC to half the sample rate; a sine of amplitude 1 reads 0.707.
class CAudioVizDataSpectrum : public CAudioVizData {
public:
    CAudioVizDataSpectrum() : CAudioVizData(EAudioVizType::spectrum) {}

    CErrorPtr save(COutputStream& out) const override;
    CErrorPtr load(CInputStream& in) override;

    CArray<double, 0> bins;
    double sampleRate = 0.0;       ///< hertz
    std::int32_t blockSize = 0;    ///< samples of a frame
    std::int32_t spectrumKind = 0; ///< how frames are joined: ESpectrumKind
    double average = 0.0;          ///< seconds that the bins cover
};

} // namespace qrb
