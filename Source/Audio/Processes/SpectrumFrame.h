// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace qrb {

class CSpectrumWindow;
namespace platform {
class CRealFFTPlan;
} // namespace platform

/// Finds the magnitudes of a frame of samples, which are in the order of time and get lost: size / 2 + 1 of them, at the
/// begin of `terms`, which has room for size + 2 numbers. Both buffers are aligned as the plan asks. False for a frame
/// with samples that are no numbers; nothing of use is found then.
[[nodiscard]] bool findMagnitudes(const CSpectrumWindow& window, const platform::CRealFFTPlan& plan, double* frame,
                                  double* terms);

} // namespace qrb
