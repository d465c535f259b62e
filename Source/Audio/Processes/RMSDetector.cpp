// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/RMSDetector.h"

#include <cmath>
#include <cstddef>

namespace qrb {

namespace {

/// Above zero, and far below anything heard.
constexpr double kFloor = 1e-15;

/// Apart from the recursions, so that the roots run in vectors.
void takeRoots(std::span<double> io)
{
    for (double& y : io)
        y = std::sqrt(y) + kFloor;
}

} // namespace

void detectRMSOnePole(double c, CRMSState& state, std::span<const double> in, std::span<double> out)
{
    double s1 = state.s1;
    for (std::size_t i = 0; i < in.size(); ++i) {
        s1 += (in[i] * in[i] - s1) * c;
        out[i] = s1;
    }
    state.s1 = s1;
    takeRoots(out);
}

void detectRMSTwoPole(double c, CRMSState& state, std::span<const double> in, std::span<double> out)
{
    double s1 = state.s1;
    double s2 = state.s2;
    for (std::size_t i = 0; i < in.size(); ++i) {
        s1 += (in[i] * in[i] - s1) * c;
        s2 += (s1 - s2) * c;
        out[i] = s2;
    }
    state = {s1, s2};
    takeRoots(out);
}

} // namespace qrb
