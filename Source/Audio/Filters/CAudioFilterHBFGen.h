// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Filters/CAudioFilterGen.h"

namespace qrb {

/// One half-band stage of fixed coefficients: half the sum of two all-pass paths, the second a sample late.
class CAudioFilterHBFGen : public CAudioFilterGen {
public:
    /// Coefficients a path that a stage can run; further ones are left out.
    static constexpr std::size_t kMaxCount = 8;

    [[nodiscard]] CErrorPtr init() override;
    void design(CAudioFilterStageList& list, double sampleRate, const CAudioFilterParams& params,
                CDCDAWFilterWorkspace* workspace) const override;

private:
    CArray<double, 8> m_direct;
    CArray<double, 8> m_delayed;
};

} // namespace qrb
