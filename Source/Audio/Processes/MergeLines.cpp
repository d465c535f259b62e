// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/MergeLines.h"

#include "Audio/Processes/LineMath.h"

#include <algorithm>
#include <cstddef>

namespace qrb {

namespace {

/// Three lines at a time, which halves the passes over `out`.
template <class Merge>
void merge(std::span<const double* const> lines, std::span<double> out, Merge merged)
{
    double* const result = out.data();
    std::copy(lines[0], lines[0] + out.size(), result);
    std::size_t line = 1;
    for (; line + 3 <= lines.size(); line += 3) {
        const double* a = lines[line];
        const double* b = lines[line + 1];
        const double* c = lines[line + 2];
        for (std::size_t i = 0; i < out.size(); ++i)
            result[i] = merged(merged(merged(result[i], a[i]), b[i]), c[i]);
    }
    for (; line < lines.size(); ++line) {
        const double* a = lines[line];
        for (std::size_t i = 0; i < out.size(); ++i)
            result[i] = merged(result[i], a[i]);
    }
}

} // namespace

void maximumOfLines(std::span<const double* const> lines, std::span<double> out)
{
    merge(lines, out, [](double a, double b) { return a > b ? a : b; });
}

void minimumOfLines(std::span<const double* const> lines, std::span<double> out)
{
    merge(lines, out, [](double a, double b) { return a < b ? a : b; });
}

void meanOfLines(std::span<const double* const> lines, std::span<double> out)
{
    merge(lines, out, [](double a, double b) { return a + b; });
    scaleLine(out, 1.0 / static_cast<double>(lines.size()), out);
}

} // namespace qrb
