// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Filters/CAudioFilterGen.h"

namespace qrb {

/// Designer of first-order stages around one smoother: low-pass, the rest as high-pass, and that high-pass with a gain
/// that puts -3 dB exactly at the frequency.
class CAudioFilterLPHP1Gen : public CAudioFilterGen {
public:
    enum class EType { lowPass, highPass, highPassGain };
    static constexpr int kTypeCount = 3;

    [[nodiscard]] CErrorPtr init() override;
    void design(CAudioFilterStageList& list, double sampleRate, const CAudioFilterParams& params,
                CDCDAWFilterWorkspace* workspace) const override;

private:
    EType m_type = EType::lowPass;
};

} // namespace qrb
