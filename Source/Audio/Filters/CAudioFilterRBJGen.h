// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Filters/CAudioFilterGen.h"

namespace qrb {

/// Designer of the usual biquads: analogue prototypes of second order through the bilinear transform, after
/// R. Bristow-Johnson's audio EQ formulae.
///
/// The bandwidth is in octaves, at the poles of the digital filter unless `is-type2`; with `is-q` it is a Q, and with
/// `is-gain-q` the gain is that Q.
class CAudioFilterRBJGen : public CAudioFilterGen {
public:
    enum class EType {
        lowPass,
        highPass,
        bandPass,
        bandPassSkirt,
        notch,
        allPass,
        peak,
        lowShelf,
        highShelf,
        allPassRadius, ///< the bandwidth is the radius of its poles
        lowPlusHigh    ///< low-pass plus inverted high-pass
    };
    static constexpr int kTypeCount = 11;

    [[nodiscard]] CErrorPtr init() override;
    void design(CAudioFilterStageList& list, double sampleRate, const CAudioFilterParams& params,
                CDCDAWFilterWorkspace* workspace) const override;

private:
    EType m_type = EType::lowPass;
    bool m_isQ = false;
    bool m_isType2 = false;
    bool m_isInverted = false;
    bool m_isGainQ = false;
};

} // namespace qrb
