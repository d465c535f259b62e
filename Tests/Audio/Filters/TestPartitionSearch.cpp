// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/PartitionSearch.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

namespace qrb {
namespace {

constexpr double kFixed[] = {0.00024855,  0.000220029, 0.000214842, 0.000269852, 0.000291851, 0.000307456,
                             0.000388251, 0.000484103, 0.000509724, 0.000617706, 0.000698987};
constexpr double kEach[] = {0.000078898, 0.000068457, 0.000064779, 0.00006684,  0.000065163, 0.000063092,
                            0.000046687, 0.000050455, 0.000052838, 0.000055967, 0.000071091};

using CRuns = std::vector<CPartitionRun>;

double costOf(const CRuns& runs)
{
    return std::accumulate(runs.begin(), runs.end(), 0.0, [](double sum, const CPartitionRun& run) {
        return sum + kFixed[run.level] + static_cast<double>(run.count) * kEach[run.level];
    });
}

/// Every set of levels above the first, each run as long as it takes for the next to be in time.
CRuns cheapestOfAll(std::size_t taps, int first)
{
    CRuns best;
    for (unsigned set = 0; set < 1u << (10 - first); ++set) {
        CRuns runs;
        std::size_t rest = taps;
        int level = first;
        for (int next = first + 1; next <= 10; ++next) {
            if (((set >> (next - first - 1)) & 1u) == 0)
                continue;
            const std::size_t inTime = (partitionBlock(next) - partitionBlock(level)) / partitionBlock(level);
            if (inTime * partitionBlock(level) >= rest)
                break;
            runs.push_back({level, inTime});
            rest -= inTime * partitionBlock(level);
            level = next;
        }
        const std::size_t last = (rest + partitionBlock(level) - 1) / partitionBlock(level);
        // A run below the top goes on only as long as the top level could not take over.
        if (level < 10 && last > (partitionBlock(10) - partitionBlock(level)) / partitionBlock(level))
            continue;
        runs.push_back({level, last});
        if (best.empty() || costOf(runs) < costOf(best) - 1e-15)
            best = runs;
    }
    return best;
}

TEST(PartitionSearch, FindsTheCheapestOfAllSequences)
{
    for (int first = 0; first <= 10; ++first) {
        for (const std::size_t taps :
             {1u, 16u, 17u, 39u, 300u, 1024u, 4096u, 16368u, 16369u, 65536u, 70000u, 500000u}) {
            const CPartitionRuns found = findPartitions(taps, first);
            const CRuns got(found.begin(), found.end());
            const CRuns want = cheapestOfAll(taps, first);
            EXPECT_NEAR(costOf(got), costOf(want), 1e-15) << taps << " taps from level " << first;
            EXPECT_EQ(got, want) << taps << " taps from level " << first;
        }
    }
}

} // namespace
} // namespace qrb
