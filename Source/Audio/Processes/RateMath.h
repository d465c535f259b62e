// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

namespace qrb {

/// Twice the samples: each of `in` doubled, which makes up for the zero that follows it. `out` has twice the length.
void stuffZeros(std::span<const double> in, std::span<double> out);

/// Every other sample, from the first on. `in` has at least twice the length of `out`.
void takeEverySecond(std::span<const double> in, std::span<double> out);

} // namespace qrb
