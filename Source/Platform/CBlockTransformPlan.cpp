// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/CBlockTransformPlan.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace qrb::platform {

namespace {

/// e^(2 pi i turns). In more digits than a double has: the rounded result is the same wherever the program runs, which
/// the library's sine of a double is not.
void writeRoot(long double turns, double& re, double& im)
{
    const long double angle = 2.0L * std::numbers::pi_v<long double> * turns;
    re = static_cast<double>(std::cos(angle));
    im = static_cast<double>(std::sin(angle));
}

/// Turns of the roots s with s^count = r, first first, for each r in turn.
std::vector<long double> split(const std::vector<long double>& turns, int count)
{
    std::vector<long double> parts;
    parts.reserve(turns.size() * static_cast<std::size_t>(count));
    for (const long double turn : turns) {
        for (int q = 0; q < count; ++q)
            parts.push_back((turn + static_cast<long double>(q)) / static_cast<long double>(count));
    }
    return parts;
}

} // namespace

CBlockTransformPlan::CBlockTransformPlan(unsigned log2Block)
    : m_block(std::size_t{1} << std::clamp(log2Block, kMinLog2Block, kMaxLog2Block)),
      m_isHalved(std::clamp(log2Block, kMinLog2Block, kMaxLog2Block) % 2 != 0)
{
    std::vector<long double> turns{0.25L};
    std::size_t part = m_block;
    if (m_isHalved) {
        writeRoot(turns[0] / 2.0L, m_halving[0], m_halving[1]);
        turns = split(turns, 2);
        part /= 2;
    }
    std::size_t used = 0;
    std::size_t parts = turns.size();
    for (; part > kLeaf; part /= 4) {
        m_passStarts[m_passCount++] = used;
        used += parts * kSplitFactors;
        parts *= 4;
    }
    m_leafStart = (used + 7) / 8 * 8;
    const std::size_t count = m_leafStart + parts * kLeafFactors;
    m_factors.reset(new (kAlignment) double[count]);
    std::fill_n(m_factors.get(), count, 0.0);

    const auto writeSplit = [](long double turn, double* out, std::size_t step, std::size_t apart) {
        for (int power = 1; power <= 3; ++power, out += step)
            writeRoot(turn / 4.0L * static_cast<long double>(power), out[0], out[apart]);
    };
    for (std::size_t pass = 0; pass < m_passCount; ++pass) {
        double* out = m_factors.get() + m_passStarts[pass];
        for (std::size_t i = 0; i < turns.size(); ++i)
            writeSplit(turns[i], out + i * kSplitFactors, 2, 1);
        turns = split(turns, 4);
    }
    const std::vector<long double> quarters = split(turns, 4);
    for (std::size_t i = 0; i < turns.size(); ++i) {
        double* out = m_factors.get() + m_leafStart + i * kLeafFactors;
        writeSplit(turns[i], out, 2, 1);
        for (std::size_t q = 0; q < 4; ++q)
            writeSplit(quarters[4 * i + q], out + 8 + q, 8, 4);
    }
}

} // namespace qrb::platform
