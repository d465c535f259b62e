// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CFadeOscillator.h"
#include "Audio/Processes/CDSPModDelayBase.h"

namespace qrb {

/// Delay of one line by whole samples, with a raised-cosine fade from an old to a new delay.
///
/// One object a line. The output depends on the samples and on where in the stream a delay was set, never on how the
/// stream is cut into blocks. Thread: audio.
class CDSPModDelay : public CDSPModDelayBase {
public:
    using CDSPModDelayBase::CDSPModDelayBase;

    /// Samples of a transition, at least 1; counts from the next transition on.
    void setFadeLength(int samples) { m_fadeLength = samples < 1 ? 1 : samples; }

    /// The first delay after a reset is taken at once. Later ones start a transition, or wait for the end of the one
    /// that runs; of several that wait, the last counts. Negative delays are none.
    void setDelay(int samples);

    /// The delay that was asked for last.
    [[nodiscard]] int delay() const { return m_pending; }

    /// Neither delay nor transition: the output is the input.
    [[nodiscard]] bool isNeutral() const { return m_target == 0 && !m_isFading; }

    /// Places a second reading tap `offset` samples behind the first; to be set before the first delay.
    void setSecondTap(int offset) { m_secondOffset = offset < 0 ? 0 : offset; }

    /// Delays `count` samples; `in` and `out` may be the same.
    void process(const double* in, double* out, int count) { process(in, out, nullptr, count); }

    /// The same with the second tap's signal, unless `secondOut` is null.
    void process(const double* in, double* out, double* secondOut, int count);

    /// The same on pool buffers: without a delay the input is handed on by reference.
    [[nodiscard]] CSampleBuffer process(const CSampleBuffer& in, int count);

    /// Forgets the signal and all delays.
    void reset();

private:
    void startFade(int target);
    void advanceFade(int count);
    void readTap(double* out, int count, int offset, const double* fade) const;

    CFadeOscillator m_fade;
    int m_fadeLength = 1;
    int m_fadeLeft = 0;
    int m_current = 0; ///< what is heard, or fades out
    int m_target = 0;  ///< what fades in
    int m_pending = 0; ///< what was asked for last
    int m_secondOffset = 0;
    bool m_hasDelay = false;
    bool m_isFading = false;
};

} // namespace qrb
