// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/RateMath.h"

namespace qrb {

void stuffZeros(std::span<const double> in, std::span<double> out)
{
    const double* source = in.data();
    double* target = out.data();
    const std::size_t count = in.size();
    for (std::size_t i = 0; i < count; ++i) {
        target[2 * i] = 2.0 * source[i];
        target[2 * i + 1] = 0.0;
    }
}

void takeEverySecond(std::span<const double> in, std::span<double> out)
{
    const double* source = in.data();
    double* target = out.data();
    const std::size_t count = out.size();
    for (std::size_t i = 0; i < count; ++i) {
        target[i] = source[2 * i];
    }
}

} // namespace qrb
