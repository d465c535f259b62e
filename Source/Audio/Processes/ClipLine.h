// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

namespace qrb {

/// `out` = `in` held within -`limit` and `limit`, which is not negative. What is no number becomes `limit`. The spans are
/// equally long and may be the same.
void clipLine(std::span<const double> in, double limit, std::span<double> out);

} // namespace qrb
