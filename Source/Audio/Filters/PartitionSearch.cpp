// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/PartitionSearch.h"

#include <algorithm>

namespace qrb {

namespace {

/// Time a sample: of the transforms of a level, and of each partition.
struct CLevelCost {
    double fixed;
    double partition;
};

constexpr CLevelCost kCosts[kPartitionLevelCount] = {
    {0.00024855, 0.000078898},  {0.000220029, 0.000068457}, {0.000214842, 0.000064779}, {0.000269852, 0.00006684},
    {0.000291851, 0.000065163}, {0.000307456, 0.000063092}, {0.000388251, 0.000046687}, {0.000484103, 0.000050455},
    {0.000509724, 0.000052838}, {0.000617706, 0.000055967}, {0.000698987, 0.000071091},
};

class CSearch {
public:
    /// Tries all ways to cover `rest` taps with a run of `level` and runs of higher levels behind it.
    void search(double cost, std::size_t rest, int level)
    {
        const std::size_t block = partitionBlock(level);
        cost += kCosts[level].fixed;
        m_runs.append({level, 0});
        if (level == kPartitionLevelCount - 1)
            finish(cost, rest, level);
        for (int next = level + 1; next < kPartitionLevelCount; ++next) {
            const std::size_t count = (std::size_t{1} << (next - level)) - 1;
            if (count * block >= rest) {
                finish(cost, rest, level);
                break; // still later levels would end in the same way
            }
            m_runs.back().count = count;
            search(cost + static_cast<double>(count) * kCosts[level].partition, rest - count * block, next);
        }
        m_runs.removeLast();
    }

    [[nodiscard]] CPartitionRuns takeBest() { return std::move(m_best); }

private:
    void finish(double cost, std::size_t rest, int level)
    {
        const std::size_t count = (rest + partitionBlock(level) - 1) / partitionBlock(level);
        cost += static_cast<double>(count) * kCosts[level].partition;
        if (!(cost < m_bestCost))
            return;
        m_bestCost = cost;
        m_runs.back().count = count;
        m_best = m_runs;
    }

    CPartitionRuns m_runs;
    CPartitionRuns m_best;
    double m_bestCost = 1e10;
};

} // namespace

CPartitionRuns findPartitions(std::size_t tapCount, int firstLevel)
{
    CSearch search;
    search.search(0.0, std::max<std::size_t>(tapCount, 1), std::clamp(firstLevel, 0, kPartitionLevelCount - 1));
    return search.takeBest();
}

} // namespace qrb
