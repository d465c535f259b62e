// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Filters/FilterStageKinds.h"
#include "Core/CArray.h"

#include <complex>
#include <span>

namespace qrb {

class CDCDAWFilterWorkspace;

/// One designed stage. With coefficients b and a its response is sum b[k] z^-k / (1 + sum a[k] z^-(k+1)); half-band
/// stages instead hold the coefficients of their two all-pass paths, `b` of the undelayed and `a` of the delayed one.
struct CAudioFilterStage {
    EFilterKind id = EFilterKind::finite;
    const CDCDAWFilterKind* kind = nullptr; ///< null for taps only, and where the design had no workspace
    CArray<double, 6> b;                    ///< feed-forward; the taps of a finite stage
    CArray<double, 6> a;                    ///< feedback

    /// Taps only: what a convolver runs.
    [[nodiscard]] bool isFinite() const { return id == EFilterKind::finite && a.empty(); }
    /// Response at `w` radians a sample.
    [[nodiscard]] std::complex<double> response(double w) const;
};

/// What designers append to: stages in series.
class CAudioFilterStageList {
public:
    void clear();
    [[nodiscard]] std::span<const CAudioFilterStage> stages() const { return m_stages.span(); }
    [[nodiscard]] bool empty() const { return m_stages.empty(); }

    /// Appends a recursive stage as it stands.
    void append(EFilterKind id, std::span<const double> b, std::span<const double> a, CDCDAWFilterWorkspace* workspace);
    /// Appends y = (b0 x + b1 x1 + b2 x2 - a1 y1 - a2 y2) / a0, unless it is not finite or not stable.
    void appendBiquad(EFilterKind id, std::span<const double, 3> b, std::span<const double, 3> a,
                      CDCDAWFilterWorkspace* workspace);
    /// Appends a finite stage.
    void appendTaps(CArray<double, 6>&& taps);

    /// Samples by which the stages are late.
    [[nodiscard]] int latency() const { return m_latency; }
    void addLatency(int samples) { m_latency += samples; }

    /// Response of all stages at `w` radians a sample, the latency included.
    [[nodiscard]] std::complex<double> response(double w) const;

private:
    CArray<CAudioFilterStage, 2> m_stages;
    int m_latency = 0;
};

} // namespace qrb
