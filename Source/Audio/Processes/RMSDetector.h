// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

namespace qrb {

/// Smoothed squares of the input.
struct CRMSState {
    double s1 = 0.0; ///< first smoother
    double s2 = 0.0; ///< second smoother, which the one-pole detector leaves alone
};

/// Root of the input's square, smoothed once with coefficient `c`, plus 1e-15, so that a logarithm of it is defined.
/// The spans are equally long and may be the same.
void detectRMSOnePole(double c, CRMSState& state, std::span<const double> in, std::span<double> out);

/// The same with two smoothers in a row.
void detectRMSTwoPole(double c, CRMSState& state, std::span<const double> in, std::span<double> out);

} // namespace qrb
