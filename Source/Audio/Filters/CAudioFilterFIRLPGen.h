// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Filters/CAudioFilterGen.h"

namespace qrb {

/// Designer of linear-phase low-passes: a sine over its argument in a Kaiser window.
///
/// `length` in seconds is half the impulse response of a cut-off at an eighth of the rate, and shrinks as the cut-off
/// rises; `freq` is the cut-off in Hz, `beta` shapes the window. The list's latency grows by half the taps.
class CAudioFilterFIRLPGen : public CAudioFilterGen {
public:
    /// Most taps on each side of the middle; longer designs append no stage.
    static constexpr double kMaxHalfLength = 1 << 20;

    void design(CAudioFilterStageList& list, double sampleRate, const CAudioFilterParams& params,
                CDCDAWFilterWorkspace* workspace) const override;
};

} // namespace qrb
