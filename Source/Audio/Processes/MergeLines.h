// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

namespace qrb {

/// Merge lines sample by sample. Each of `lines`, of which there is at least one, has as many samples as `out`, which
/// overlaps none of them. The lines are taken in their order, so that sums do not depend on anything else.

void maximumOfLines(std::span<const double* const> lines, std::span<double> out);
void minimumOfLines(std::span<const double* const> lines, std::span<double> out);
void meanOfLines(std::span<const double* const> lines, std::span<double> out);

} // namespace qrb
