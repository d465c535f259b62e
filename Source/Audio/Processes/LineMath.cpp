// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/LineMath.h"

#include <cmath>
#include <cstddef>

namespace qrb {

void scaleLine(std::span<const double> in, double factor, std::span<double> out)
{
    for (std::size_t i = 0; i < out.size(); ++i)
        out[i] = in[i] * factor;
}

void rectifyLine(std::span<const double> in, std::span<double> out)
{
    for (std::size_t i = 0; i < out.size(); ++i)
        out[i] = std::abs(in[i]);
}

void multiplyLines(std::span<const double> a, std::span<const double> b, std::span<double> out)
{
    for (std::size_t i = 0; i < out.size(); ++i)
        out[i] = a[i] * b[i];
}

void divideLines(std::span<const double> a, std::span<const double> b, std::span<double> out)
{
    for (std::size_t i = 0; i < out.size(); ++i)
        out[i] = a[i] / b[i];
}

void blendLines(std::span<const double> from, std::span<const double> to, double weight, std::span<double> out)
{
    for (std::size_t i = 0; i < out.size(); ++i)
        out[i] = (to[i] - from[i]) * weight + from[i];
}

void encodeMidSide(std::span<const double> first, std::span<const double> second, std::span<double> mid,
                   std::span<double> side)
{
    for (std::size_t i = 0; i < mid.size(); ++i) {
        const double difference = (second[i] - first[i]) * -0.5;
        mid[i] = second[i] + difference;
        side[i] = difference;
    }
}

void decodeMidSide(std::span<const double> mid, std::span<const double> side, std::span<double> first,
                   std::span<double> second)
{
    for (std::size_t i = 0; i < first.size(); ++i) {
        const double sum = mid[i] + side[i];
        second[i] = mid[i] - side[i];
        first[i] = sum;
    }
}

} // namespace qrb
