// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Filters/CAudioFilterParams.h"
#include "Audio/Filters/CAudioFilterStageList.h"
#include "Core/CObject.h"

#include <complex>

namespace qrb {

class CDCDAWFilterWorkspace;

/// A filter designer: makes run-time stages of a sample rate and parameter values. Declared in the shared tree and
/// read-only once built. Thread: any.
class CAudioFilterGen : public CObject {
public:
    /// Appends the designed stages to the list; none where a parameter that the designer needs is missing, or where
    /// the filter makes no sense at this sample rate: the signal then passes. `workspace` may be null; the stages then
    /// have no run-time kind. Allocates.
    virtual void design(CAudioFilterStageList& list, double sampleRate, const CAudioFilterParams& params,
                        CDCDAWFilterWorkspace* workspace) const = 0;

    /// Response at a frequency in Hz of what design() makes; 1 where it makes no stage.
    [[nodiscard]] std::complex<double> response(double frequency, double sampleRate,
                                                const CAudioFilterParams& params) const;
};

} // namespace qrb
