// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

namespace qrb {

/// Arithmetic on whole lines. Spans of a call are equally long; an output may be the same as an input, but does not
/// overlap one otherwise.

/// `out` = `in` * `factor`
void scaleLine(std::span<const double> in, double factor, std::span<double> out);

/// `out` = |`in`|
void rectifyLine(std::span<const double> in, std::span<double> out);

/// `out` = `a` * `b`
void multiplyLines(std::span<const double> a, std::span<const double> b, std::span<double> out);

/// `out` = `a` / `b`
void divideLines(std::span<const double> a, std::span<const double> b, std::span<double> out);

/// `out` = (`to` - `from`) * `weight` + `from`
void blendLines(std::span<const double> from, std::span<const double> to, double weight, std::span<double> out);

/// `mid` and `side` of a pair: half the sum, half the difference of `first` less `second`.
void encodeMidSide(std::span<const double> first, std::span<const double> second, std::span<double> mid,
                   std::span<double> side);

/// The pair of `mid` and `side`, undoing encodeMidSide.
void decodeMidSide(std::span<const double> mid, std::span<const double> side, std::span<double> first,
                   std::span<double> second);

} // namespace qrb
