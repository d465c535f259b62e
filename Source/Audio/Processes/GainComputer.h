// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/VectorWidth.h"

#include <cstddef>

namespace qrb {

/// 20 over ln 10, and its inverse.
inline constexpr double kDecibelsPerNeper = 8.685889638065037;
inline constexpr double kNepersPerDecibel = 0.11512925464970228;

/// Static curve of a compressor over the level's distance from the threshold, in decibels: no change up to `kneeStart`, a
/// straight line from `kneeEnd` on, between them a circular arc that meets both tangentially.
struct CGainCurve {
    double slope = -1.0;
    double ratioBack = 0.0; ///< output slope above the knee, 1 + `slope`
    double kneeStart = 0.0;
    double arcCentre = 0.0;
    double kneeEnd = 0.0;
    double arcRadius2 = 0.0; ///< radius squared
};

/// `ratio` is the slope of the output above the threshold (0.5 is 2:1), `knee` its width in decibels.
[[nodiscard]] CGainCurve makeGainCurve(double ratio, double knee);

/// Change of gain in decibels, `over` decibels above the threshold.
[[nodiscard]] double gainDecibels(const CGainCurve& curve, double over);

/// Linear levels to linear gains, `count` of them; `threshold` in decibels. `in` and `out` may be the same. A level below
/// the smallest normal number is silence; levels are not negative.
using FGainKernel = void (*)(const CGainCurve& curve, double threshold, const double* in, double* out,
                             std::size_t count);

/// One function over a line. `in` and `out` may be the same.
using FLineMap = void (*)(const double* in, double* out, std::size_t count);

/// The loops of one vector width. All widths give the same bits.
struct CGainKernels {
    /// By downward (acts below the threshold), then by inverse (1 over the gain).
    FGainKernel gain[2][2];
    /// Natural logarithm, within 1 ulp of numbers from the smallest normal one; below it minus infinity.
    FLineMap log;
    /// Exponential, within 1.2 ulp of x up to 709; below -708 it is 0.
    FLineMap exp;
};

/// Thread: any.
[[nodiscard]] const CGainKernels& gainKernels(EVectorWidth width);

/// The widest that this processor has. Thread: any.
[[nodiscard]] const CGainKernels& gainKernels();

} // namespace qrb
