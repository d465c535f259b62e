// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CAudioFilterMagnusGen.h"

#include "Audio/Filters/MagnusDesigns.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qrb {

namespace {

/// The formulae divide by the distance of the gain from 1.
constexpr double kNearUnity = 0.001;

CMagnusDesign makeDesign(CAudioFilterMagnusGen::EType type, double f, double gain, double h)
{
    using EType = CAudioFilterMagnusGen::EType;
    using std::numbers::sqrt2;
    const double peak = std::abs(gain - 1.0) < kNearUnity ? 1.0 - kNearUnity : gain;
    const double low = std::exp2(-h);
    const double high = std::exp2(h);
    switch (type) {
    case EType::peakA:
        return designMagnusA(1.0, f * low, std::sqrt(peak), f, peak);
    case EType::peakB:
        return designMagnusB(1.0, f * low, std::sqrt(peak), f, peak);
    case EType::peakC:
        return designMagnusC(1.0, peak, std::sqrt(peak), f, f * (high - low));
    case EType::bandPassA:
        return designMagnusA(0.0, f * low, 1.0 / sqrt2, f, 1.0);
    case EType::bandPassB:
        return designMagnusB(0.0, f * low, 1.0 / sqrt2, f, 1.0);
    case EType::bandPassC:
        break;
    }
    const double width = std::min(0.5, f * high) - std::min(0.5, f) * low;
    return designMagnusC(0.0, 1.0, 1.0 / sqrt2, std::min(0.5, f), width);
}

} // namespace

CErrorPtr CAudioFilterMagnusGen::init()
{
    QRB_TRY(CAudioFilterGen::init());
    const int type = getAttrInt("type");
    if (type < 0 || type >= kTypeCount)
        return QRB_ERROR("@qrbstr_CAudioFilterMagnusGen_init_InvalidType Invalid filter type '%1' specified.",
                         getAttrString("type"));
    m_type = static_cast<EType>(type);
    return nullptr;
}

void CAudioFilterMagnusGen::design(CAudioFilterStageList& list, double sampleRate, const CAudioFilterParams& params,
                                   CDCDAWFilterWorkspace* workspace) const
{
    double frequency = 0.0;
    double gain = 0.0;
    double bandwidth = 0.0;
    if (!params.get("freq", frequency) || !params.get("gain", gain) || !params.get("bw", bandwidth) ||
        !(2.0 * frequency <= sampleRate) || !(frequency > 0.0) || !std::isfinite(gain) || !std::isfinite(bandwidth))
        return; // the limits within the designs would hide what is no number
    CMagnusDesign made = makeDesign(m_type, frequency / sampleRate, gain, bandwidth / 2.0);
    if (m_type >= EType::bandPassA) {
        for (double& b : made.b)
            b *= gain;
    }
    list.appendBiquad(EFilterKind::biquad, made.b, made.a, workspace);
}

} // namespace qrb
