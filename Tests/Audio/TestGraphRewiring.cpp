// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioEnv.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamGuard.h"
#include "Platform/CAutoResetEvent.h"
#include "Platform/CSystemThread.h"
#include "Tests/Audio/CGraphRig.h"

#include <gtest/gtest.h>

namespace qrb {

namespace {

/// A stack whose instances declare, rename and read parameters of their own, and a node that comes and goes.
const std::string kBody = paramXml("count", "1") + paramXml("flip", "0") + paramXml("level", "2") +
                          "<audio:process-bypass-state name='s' id='1' param='flip' value='1'/>" +
                          "<audio:process-def name='st' is-stacked='true' stack-param='^count' is-auto-links='true'>" +
                          paramXml("own", "3") + "<audio:param-remap name='r' orig='a.gain' new='own'/>" +
                          probeXml("a", "gain") + probeXml("b", "missing") + "</audio:process-def>" +
                          probeXml("late", "^level", "bypass-state-id='1'");

} // namespace

TEST(GraphRewiring, WaitsForNobodyWhoHoldsTheParameters)
{
    CGraphRig rig(kBody);
    rig.collector().env().setActive(true);
    double out = 0.0;
    const auto isDone = [&] {
        platform::CAutoResetEvent done;
        platform::CSystemThread audio;
        const auto body = [&] {
            out = rig.runOne();
            done.signal();
        };
        bool isInTime = false;
        {
            const CAudioParamGuard guard(rig.collector());
            EXPECT_EQ(audio.start("audio", body, platform::EThreadPriority::normal), 0);
            isInTime = done.waitFor(20.0);
        }
        audio.join();
        return isInTime;
    };
    for (const int count : {1, 3, 32, 2, 5}) {
        rig.set("count", count);
        for (const double flip : {1.0, 0.0}) {
            rig.set("flip", flip);
            ASSERT_TRUE(isDone()) << count << " instances, state " << flip;
            EXPECT_EQ(out, std::pow(3.0, count) * (flip == 0.0 ? 2.0 : 1.0)) << count;
        }
    }
}

} // namespace qrb
