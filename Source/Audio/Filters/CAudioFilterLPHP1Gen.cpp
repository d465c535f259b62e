// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CAudioFilterLPHP1Gen.h"

#include <cmath>
#include <numbers>

namespace qrb {

namespace {

constexpr double kMinus3dB = 0.7079457843841379;

/// Gain that brings the high-pass (1 - k)(1 - z^-1) / (1 - (1 - k) z^-1) to -3 dB at w; `y` is 1 - cos(w).
double highPassGain(double k, double w, double y)
{
    const double p = 1.0 - k;
    const double re = p * y;
    const double de = k + p * y;
    const double im = p * std::sin(w);
    return kMinus3dB / std::sqrt((re * re + im * im) / (de * de + im * im));
}

} // namespace

CErrorPtr CAudioFilterLPHP1Gen::init()
{
    QRB_TRY(CAudioFilterGen::init());
    const int type = getAttrInt("type");
    if (type < 0 || type >= kTypeCount)
        return QRB_ERROR("@qrbstr_CAudioFilterLPHP1Gen_init_InvalidType Invalid filter type '%1' specified.",
                         getAttrString("type"));
    m_type = static_cast<EType>(type);
    return nullptr;
}

void CAudioFilterLPHP1Gen::design(CAudioFilterStageList& list, double sampleRate, const CAudioFilterParams& params,
                                  CDCDAWFilterWorkspace* workspace) const
{
    double frequency = 0.0;
    if (!params.get("freq", frequency) || !(2.0 * frequency <= sampleRate))
        return;
    const double w = 2.0 * std::numbers::pi * frequency / sampleRate;
    // 1 - cos(w) without the loss of digits that low frequencies would suffer.
    const double sine = std::sin(w / 2.0);
    const double y = 2.0 * sine * sine;
    const double k = std::sqrt(y * (y + 2.0)) - y;
    const double g = m_type == EType::highPassGain ? highPassGain(k, w, y) : 1.0;
    if (!(std::abs(k - 1.0) < 1.0) || !std::isfinite(g))
        return;
    const double feedback[] = {k - 1.0};
    if (m_type == EType::lowPass) {
        const double forward[] = {k, 0.0};
        list.append(EFilterKind::lowPass1, forward, feedback, workspace);
    } else {
        const double forward[] = {(1.0 - k) * g, (k - 1.0) * g};
        list.append(m_type == EType::highPass ? EFilterKind::highPass1 : EFilterKind::highPass1Gain, forward, feedback,
                    workspace);
    }
}

} // namespace qrb
