// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace qrb {

struct CGainKernels;

/// The loops for processors with vectors of four doubles (AVX2); asking for them is safe on any. Thread: any.
[[nodiscard]] const CGainKernels& quadGainKernels();

} // namespace qrb
