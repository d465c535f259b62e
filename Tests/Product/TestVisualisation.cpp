// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioProcessPlan.h"
#include "Audio/Viz/CAudioVizCollector.h"
#include "Core/CMemoryReader.h"
#include "Core/CWriteSeqBuffer.h"
#include "Tests/Product/CProductRig.h"

#include <gtest/gtest.h>
#include <map>

namespace {

const std::string kGroup = "modThumpcraft.";

/// Every source that the product declares; the compressor's and the gate's only run where these are on.
const char* const kSources[] = {"modMeterOut",
                                "modMeterIODiff",
                                "modSpectrum",
                                "modThumpcraft.modGate.modMeterIn",
                                "modThumpcraft.modGate.modMeterGR",
                                "modThumpcraft.modBand.mod.modMeterIn",
                                "modThumpcraft.modBand.mod.modMeterIODiff",
                                "modThumpcraft.modBand.mod.modComp.modMeterGR"};

std::map<std::string, int> recordCounts(qrb::CAudioVizCollector& collector, double now)
{
    qrb::CWriteSeqBuffer out(4096);
    EXPECT_FALSE(collector.writeData(1, now, out));
    qrb::CByteArray bytes;
    out.getContiguous(bytes);
    qrb::CMemoryReader in(std::move(bytes));
    std::map<std::string, int> counts;
    double time = 0.0;
    EXPECT_FALSE(in.readDouble(time));
    for (std::int32_t count = 0; !in.readInt32(count) && count > 0;) {
        qrb::CString name;
        EXPECT_FALSE(in.readString(name));
        counts[name.toUtf8()] += count;
        for (std::int32_t i = 0; i < count; ++i) {
            std::int32_t size = 0;
            EXPECT_FALSE(in.readInt32(size));
            EXPECT_FALSE(in.skip(static_cast<std::uint64_t>(size) + 4));
        }
    }
    return counts;
}

TEST(TestVisualisation, EachSourceDeliversWhileSomebodyLooksAndTheSoundStaysTheSame)
{
    const CChannels in = makeNoise(2, 20000);
    const auto play = [&](bool isWatched, std::map<std::string, int>& counts, std::map<std::string, int>& after) {
        CProductRig rig({44100.0, 2, 2, 0, 3});
        for (int band = 0; band < 3; ++band)
            rig.set(kGroup + "comp-enable:0:" + std::to_string(band) + "=1");
        rig.set(kGroup + "gate-enable=1").start();
        qrb::CAudioVizCollector* collector = nullptr;
        EXPECT_FALSE(rig.instance().root().findObjectChecked("plugin.viz-collector", collector));
        std::uint32_t id = 1u << 16;
        for (const char* const source : kSources)
            if (isWatched)
                collector->listen(qrb::CAudioVizCollector::kOwnInstance, qrb::CString("plugin.modMain.") + source,
                                  ++id);
        (void)recordCounts(*collector, 0.0);
        CChannels out = rig.run(in, 512);
        (void)recordCounts(*collector, 0.05);
        const CChannels more = rig.run(in, 512);
        counts = recordCounts(*collector, 0.1);
        for (std::uint32_t gone = (1u << 16) + 1; gone <= id; ++gone)
            collector->unlisten(gone);
        const CChannels last = rig.run(in, 512);
        after = recordCounts(*collector, 0.15);
        for (std::size_t channel = 0; channel < 2; ++channel) {
            out[channel].insert(out[channel].end(), more[channel].begin(), more[channel].end());
            out[channel].insert(out[channel].end(), last[channel].begin(), last[channel].end());
        }
        return out;
    };
    std::map<std::string, int> counts;
    std::map<std::string, int> after;
    const CChannels watched = play(true, counts, after);
    for (const char* const source : kSources)
        EXPECT_GT(counts["plugin.modMain." + std::string(source)], 0) << source;
    EXPECT_TRUE(after.empty());
    EXPECT_EQ(play(false, counts, after), watched);
    EXPECT_TRUE(counts.empty()) << "nobody listens";
}

TEST(TestVisualisation, AMeterThatGoesLeavesThePlanOfTheGraph)
{
    const CChannels in = makeNoise(2, 4096);
    CProductRig rig({44100.0, 2, 2, 0, 3});
    rig.set(kGroup + "comp-enable:0:0=1").set(kGroup + "gate-enable=1").start();
    qrb::CAudioVizCollector* collector = nullptr;
    EXPECT_FALSE(rig.instance().root().findObjectChecked("plugin.viz-collector", collector));
    for (const char* const source : kSources) {
        collector->listen(qrb::CAudioVizCollector::kOwnInstance, qrb::CString("plugin.modMain.") + source, 1u << 16);
        static_cast<void>(rig.run(in, 512));
        EXPECT_TRUE(rig.instance().plan().isMade());
        collector->unlisten(1u << 16);
        static_cast<void>(rig.run(makeNoise(2, 64), 64));
        EXPECT_FALSE(rig.instance().plan().isMade()) << source;
    }
}

} // namespace
