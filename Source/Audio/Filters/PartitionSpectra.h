// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAlignedSamples.h"
#include "Audio/Filters/ConvolverKernels.h"

#include <span>

namespace qrb {

/// A list of the spectra of taps, block by block, scaled for the transform's way there and back. What `count` blocks do
/// not reach is left out; where the taps end earlier zeros follow. Allocates.
[[nodiscard]] CAlignedSamples makePartitionSpectra(const platform::CBlockTransformPlan& plan,
                                                   std::span<const double> taps, std::size_t count,
                                                   const CConvolverKernels& kernels);

/// Makes each of the `count` spectra of a list that of `frame`, two blocks. `work` has room for as many samples.
void fillSpectra(const platform::CBlockTransformPlan& plan, const double* frame, std::size_t count,
                 const CConvolverKernels& kernels, double* work, CAlignedSamples& list);

} // namespace qrb
