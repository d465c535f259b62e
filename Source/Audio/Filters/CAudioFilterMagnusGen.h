// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Filters/CAudioFilterGen.h"

namespace qrb {

/// Designer of peaking and band-pass biquads whose gain is exact at the centre and prescribed at an edge of the band, and
/// whose gain towards half the rate follows the analogue prototype (see S. J. Orfanidis, "Digital parametric equalizer
/// design with prescribed Nyquist-frequency gain", 1997). Three laws of matching, A to C.
class CAudioFilterMagnusGen : public CAudioFilterGen {
public:
    enum class EType { peakA, peakB, peakC, bandPassA, bandPassB, bandPassC };
    static constexpr int kTypeCount = 6;

    [[nodiscard]] CErrorPtr init() override;
    void design(CAudioFilterStageList& list, double sampleRate, const CAudioFilterParams& params,
                CDCDAWFilterWorkspace* workspace) const override;

private:
    EType m_type = EType::peakA;
};

} // namespace qrb
