// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

namespace qrb {

/// Half-band stages that change the rate: of each sample only one of the two paths is run, the other one would get zeros
/// or would not be heard. All kinds give the bits of the plain stage around the zeros.
///
/// `count`: coefficients a path, 1 to 8. `states`: one a line, at an even sample, with the same coefficients. A step is
/// one sample at the lower rate.
struct CHalfBandKernels {
    using Run = void(std::size_t count, void* const* states, std::size_t lineCount, const double* const* in,
                     double* const* out, std::size_t steps);

    /// Makes twice as many samples; stands for a stage that gets each sample doubled and a zero behind it. The memory of
    /// the zeros, which is zero, is not touched.
    Run* up;
    /// Makes the samples at even places alone of twice as many. The memory that belongs to the others is not touched.
    Run* down;
};

[[nodiscard]] const CHalfBandKernels& pairHalfBandKernels();
/// Only where the processor has AVX2.
[[nodiscard]] const CHalfBandKernels& quadHalfBandKernels();
/// The fastest for this processor. Thread: any.
[[nodiscard]] const CHalfBandKernels& halfBandKernels();

} // namespace qrb
