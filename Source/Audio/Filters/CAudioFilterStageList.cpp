// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CAudioFilterStageList.h"

#include "Audio/Filters/CDCDAWFilterWorkspace.h"

#include <cmath>
#include <utility>

namespace qrb {

namespace {

using CComplex = std::complex<double>;

/// Product of the all-pass sections (c + z^-2) / (1 + c z^-2).
CComplex allPassPath(std::span<const double> coefficients, CComplex delay2)
{
    CComplex product = 1.0;
    for (const double c : coefficients)
        product *= (c + delay2) / (1.0 + c * delay2);
    return product;
}

/// Sum of c[k] * delay^k.
CComplex polynomial(std::span<const double> coefficients, CComplex delay)
{
    CComplex sum = 0.0;
    for (std::size_t k = coefficients.size(); k > 0; --k)
        sum = sum * delay + coefficients[k - 1];
    return sum;
}

} // namespace

CComplex CAudioFilterStage::response(double w) const
{
    const CComplex delay = std::polar(1.0, -w);
    if (id >= EFilterKind::halfBand1 && id <= EFilterKind::halfBand8) {
        const CComplex delay2 = std::polar(1.0, -2.0 * w);
        return 0.5 * (allPassPath(b.span(), delay2) + delay * allPassPath(a.span(), delay2));
    }
    return polynomial(b.span(), delay) / (1.0 + delay * polynomial(a.span(), delay));
}

void CAudioFilterStageList::clear()
{
    m_stages.clear();
    m_latency = 0;
}

void CAudioFilterStageList::append(EFilterKind id, std::span<const double> b, std::span<const double> a,
                                   CDCDAWFilterWorkspace* workspace)
{
    CAudioFilterStage stage;
    stage.id = id;
    stage.kind = workspace == nullptr ? nullptr : workspace->kind(id);
    stage.b = CArray<double, 6>(b);
    stage.a = CArray<double, 6>(a);
    m_stages.append(std::move(stage));
}

void CAudioFilterStageList::appendBiquad(EFilterKind id, std::span<const double, 3> b, std::span<const double, 3> a,
                                         CDCDAWFilterWorkspace* workspace)
{
    const double forward[] = {b[0] / a[0], b[1] / a[0], b[2] / a[0]};
    const double feedback[] = {a[1] / a[0], a[2] / a[0]};
    const bool isFinite = std::isfinite(forward[0]) && std::isfinite(forward[1]) && std::isfinite(forward[2]);
    // Both poles lie inside the unit circle; what is no number fails the comparisons.
    const bool isStable = std::abs(feedback[1]) < 1.0 && std::abs(feedback[0]) < 1.0 + feedback[1];
    if (isFinite && isStable)
        append(id, forward, feedback, workspace);
}

void CAudioFilterStageList::appendTaps(CArray<double, 6>&& taps)
{
    CAudioFilterStage stage;
    stage.b = std::move(taps);
    m_stages.append(std::move(stage));
}

CComplex CAudioFilterStageList::response(double w) const
{
    CComplex product = 1.0;
    for (const CAudioFilterStage& stage : m_stages)
        product *= stage.response(w);
    return product;
}

} // namespace qrb
