// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace qrb {

/// y = (b0 x + b1 x1 + b2 x2 - a1 y1 - a2 y2) / a0. May hold numbers that are not finite: the caller checks.
struct CMagnusDesign {
    double b[3];
    double a[3];
};

// Biquads of prescribed gain. Frequencies are fractions of the sample rate, gains linear: `zeroGain` far below the band,
// `edgeGain` at `edge` (design C: at both ends of `width`), `centreGain` at `centre`.

/// The gain at half the rate is the prototype's there.
[[nodiscard]] CMagnusDesign designMagnusA(double zeroGain, double edge, double edgeGain, double centre,
                                          double centreGain);
/// The prototype's gain is also matched at a quarter of the rate.
[[nodiscard]] CMagnusDesign designMagnusB(double zeroGain, double edge, double edgeGain, double centre,
                                          double centreGain);
[[nodiscard]] CMagnusDesign designMagnusC(double zeroGain, double centreGain, double edgeGain, double centre,
                                          double width);

} // namespace qrb
