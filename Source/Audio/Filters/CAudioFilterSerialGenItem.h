// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Filters/CAudioFilterGen.h"

namespace qrb {

/// One filter of a series: the designer at `fltgen`, given each value raised to a power and scaled. The lists go by
/// place (freq, gain, bw, then the others); 1 where a list has ended.
class CAudioFilterSerialGenItem : public CObject {
public:
    [[nodiscard]] CErrorPtr init() override;

    /// Thread: any.
    void design(CAudioFilterStageList& list, double sampleRate, const CAudioFilterParams& params,
                CDCDAWFilterWorkspace* workspace) const;

private:
    const CAudioFilterGen* m_designer = nullptr;
    CArray<double, 8> m_scales;
    CArray<double, 8> m_powers;
};

} // namespace qrb
