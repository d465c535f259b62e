// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CAudioFilterRBJGen.h"

#include <cmath>
#include <numbers>

namespace qrb {

namespace {

struct CCoefficients {
    double b[3];
    double a[3];
};

/// What all the formulae are made of.
struct CTerms {
    double A;     ///< root of the gain
    double c;     ///< cosine of the frequency
    double s;     ///< its sine
    double alpha; ///< half the bandwidth of the poles
    double beta;  ///< slope of a shelf
    double radius;
};

using EType = CAudioFilterRBJGen::EType;

CCoefficients shelf(const CTerms& t, double side)
{
    const double A = t.A;
    const double c = side * t.c;
    const double up = A + 1.0;
    const double down = A - 1.0;
    return {{A * (up - down * c + t.beta), side * 2.0 * A * (down - up * c), A * (up - down * c - t.beta)},
            {up + down * c + t.beta, side * -2.0 * (down + up * c), up + down * c - t.beta}};
}

CCoefficients coefficients(EType type, const CTerms& t)
{
    const double c = t.c;
    const double poles[3] = {1.0 + t.alpha, -2.0 * c, 1.0 - t.alpha};
    const auto withPoles = [&](double b0, double b1, double b2) {
        return CCoefficients{{b0, b1, b2}, {poles[0], poles[1], poles[2]}};
    };
    switch (type) {
    case EType::lowPass:
        return withPoles((1.0 - c) / 2.0, 1.0 - c, (1.0 - c) / 2.0);
    case EType::highPass:
        return withPoles((1.0 + c) / 2.0, -(1.0 + c), (1.0 + c) / 2.0);
    case EType::bandPass:
        return withPoles(t.alpha, 0.0, -t.alpha);
    case EType::bandPassSkirt:
        return withPoles(t.s / 2.0, 0.0, -t.s / 2.0);
    case EType::notch:
        return withPoles(1.0, -2.0 * c, 1.0);
    case EType::allPass:
        return withPoles(poles[2], poles[1], poles[0]);
    case EType::peak:
        return {{1.0 + t.alpha * t.A, -2.0 * c, 1.0 - t.alpha * t.A},
                {1.0 + t.alpha / t.A, -2.0 * c, 1.0 - t.alpha / t.A}};
    case EType::lowShelf:
        return shelf(t, 1.0);
    case EType::highShelf:
        return shelf(t, -1.0);
    case EType::allPassRadius: {
        const double r = t.radius;
        return {{r * r, -2.0 * r * c, 1.0}, {1.0, -2.0 * r * c, r * r}};
    }
    case EType::lowPlusHigh:
        break;
    }
    return withPoles(-c, 2.0, -c);
}

/// The loop that leaves out what the zeros of a type make superfluous.
EFilterKind kindOf(EType type)
{
    switch (type) {
    case EType::lowPass:
        return EFilterKind::biquadLowPass;
    case EType::highPass:
        return EFilterKind::biquadHighPass;
    case EType::bandPass:
    case EType::bandPassSkirt:
        return EFilterKind::biquadBandPass;
    case EType::notch:
        return EFilterKind::biquadNotch;
    default:
        return EFilterKind::biquad;
    }
}

} // namespace

CErrorPtr CAudioFilterRBJGen::init()
{
    QRB_TRY(CAudioFilterGen::init());
    const int type = getAttrInt("type");
    if (type < 0 || type >= kTypeCount)
        return QRB_ERROR("@qrbstr_CAudioFilterRBJGen_init_InvalidType Invalid filter type '%1' specified.",
                         getAttrString("type"));
    m_type = static_cast<EType>(type);
    m_isQ = getAttrBool("is-q");
    m_isType2 = getAttrBool("is-type2");
    m_isInverted = getAttrBool("is-inverted");
    m_isGainQ = getAttrBool("is-gain-q");
    return nullptr;
}

void CAudioFilterRBJGen::design(CAudioFilterStageList& list, double sampleRate, const CAudioFilterParams& params,
                                CDCDAWFilterWorkspace* workspace) const
{
    const bool hasGain = m_type == EType::peak || m_type == EType::lowShelf || m_type == EType::highShelf;
    double frequency = 0.0;
    double gain = 1.0;
    double bandwidth = 0.0;
    if (!params.get("freq", frequency) || (!params.get("gain", gain) && (hasGain || m_isGainQ)) ||
        (!m_isGainQ && !params.get("bw", bandwidth)) || !(2.0 * frequency <= sampleRate))
        return;
    if (m_isGainQ)
        bandwidth = gain;

    const double w = 2.0 * std::numbers::pi * frequency / sampleRate;
    CTerms terms{std::sqrt(gain), std::cos(w), std::sin(w), 0.0, 0.0, bandwidth};
    if (m_isQ || m_isGainQ) {
        terms.alpha = terms.s / (2.0 * bandwidth);
        terms.beta = std::sqrt(terms.A) * terms.s / bandwidth;
    } else {
        const double octaves = 0.5 * std::numbers::ln2 * bandwidth;
        const double sinh = std::sinh(m_isType2 ? octaves : octaves * w / terms.s);
        terms.alpha = sinh * terms.s;
        terms.beta = 2.0 * std::sqrt(terms.A) * sinh * terms.s;
    }
    CCoefficients made = coefficients(m_type, terms);
    if (m_isInverted && (m_type == EType::lowPass || m_type == EType::highPass)) {
        for (double& b : made.b)
            b = -b;
    }
    list.appendBiquad(kindOf(m_type), made.b, made.a, workspace);
}

} // namespace qrb
