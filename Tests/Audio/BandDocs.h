// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace qrb {

/// Designers and arrays of the product's crossover, to stand in "audio".
[[nodiscard]] std::string crossoverDesignersXml();

/// The prototypes of the product's crossover and the remaps that lead to them: for a multiband process that declares
/// `freq`, `type` and `xo-count`.
[[nodiscard]] std::string crossoverPrototypesXml();

/// Attributes of a multiband process with these prototypes, whose band count is `band-count`.
inline const std::string kCrossoverAttrs =
    "is-multiband='true' multiband-freq-param='freq' multiband-count-param='band-count' multiband-lp='.protLP' "
    "multiband-hp='.protHP' multiband-pre='.protAP' ";

/// The parameter `freq`, up to frequencies above all that is sampled.
[[nodiscard]] std::string frequencyXml(const std::string& defaults);

/// A recursive filter below a switch: parameters `index` and `bw` with these values, and `freq`.
[[nodiscard]] std::string filterXml(const std::string& name, const std::string& array, int index,
                                    const std::string& bw = "1");

} // namespace qrb
