// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Processes/LanePlaces.h"

#include <cstddef>
#include <span>

namespace qrb {

/// Smoothed squares of the input.
struct CRMSState {
    double s1 = 0.0; ///< first smoother
    double s2 = 0.0; ///< second smoother, which the one-pole detector leaves alone
};

/// A line that a detector runs on.
struct CRMSLine {
    double coefficient = 0.0;
    CRMSState* state = nullptr;
    const double* in = nullptr;
    double* out = nullptr; ///< may be the input
};

/// Root of the input's square, smoothed once or twice, plus 1e-15, so that a logarithm of it is defined. Runs any number
/// of lines side by side; the result does not depend on how many there are, nor on `width`.
void detectRMS(bool isTwoPole, std::span<const CRMSLine> lines, std::size_t count, EVectorWidth width);
void detectRMS(bool isTwoPole, std::span<const CRMSLine> lines, std::size_t count);

using FRMSKernel = void (*)(const CRMSLine* lines, std::size_t count);

/// Loops in the order of the others, only where the processor has the vectors.
[[nodiscard]] CWideKernels<FRMSKernel> wideRMSKernels();

} // namespace qrb
