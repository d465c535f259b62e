// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CFadeOscillator.h"
#include "Audio/Filters/FilterStageKinds.h"

#include <cstdint>

namespace qrb {

/// Where a running stage stands in its way to new coefficients.
struct CFilterFade {
    CFadeOscillator oscillator;
    std::int32_t length = 1; ///< samples of a whole fade
    std::int32_t left = 0;   ///< 0: no fade runs
    bool isPending = false;  ///< the next set waits for this fade's end

    void start()
    {
        oscillator.start(length);
        left = length;
    }
};

/// Coefficients of a biquad, the feedback ones with the sign they are added with.
struct CBiquadSet {
    double b0, b1, b2, a1, a2;
};

/// Memory of a biquad of any shape.
struct CBiquadState {
    CBiquadSet current;
    CBiquadSet target;  ///< during a fade: where it leads
    CBiquadSet pending; ///< where the one after it will lead
    double w1, w2;
    double p1, p2; ///< during a fade: states of the old filter
    CFilterFade fade;
};
static_assert(sizeof(CBiquadState) <= 200);

struct CFirstOrderSet {
    double k, g;
};

/// Memory of a first-order stage.
struct CFirstOrderState {
    CFirstOrderSet current;
    CFirstOrderSet target;
    CFirstOrderSet pending;
    double z;
    CFilterFade fade;
};
static_assert(sizeof(CFirstOrderState) <= 104);

[[nodiscard]] constexpr bool isBiquad(EFilterKind id)
{
    return id >= EFilterKind::biquad && id <= EFilterKind::biquadNotch;
}

/// Whether a fade runs in a stage's memory, which then has to run by itself.
[[nodiscard]] inline bool isFilterFading(EFilterKind id, const void* state)
{
    if (isBiquad(id))
        return static_cast<const CBiquadState*>(state)->fade.left > 0;
    if (id == EFilterKind::lowPass1 || id == EFilterKind::highPass1 || id == EFilterKind::highPass1Gain)
        return static_cast<const CFirstOrderState*>(state)->fade.left > 0;
    return false;
}

} // namespace qrb
