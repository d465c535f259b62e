// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Vst3Host/CModuleFile.h"
#include "Tools/Vst3Host/CVstHost.h"
#include "Tools/Vst3Host/ResidentBytes.h"

#include <gtest/gtest.h>
#include <malloc.h>
#include <memory>

namespace {

constexpr Steinberg::Vst::ParamID kProgramId = 72;
constexpr int kPrograms = 17;

#if QRB_SYSTEM_ALLOCATOR
constexpr bool kIsWatched = true; // sanitizers keep what is released, and are slow
#else
constexpr bool kIsWatched = false;
#endif

struct CMemory {
    std::size_t inUse = 0;    ///< bytes of the system's allocator
    std::size_t resident = 0; ///< bytes of the process
};

CMemory memoryNow()
{
    const struct mallinfo2 info = mallinfo2();
    return {.inUse = info.uordblks + info.hblkhd, .resident = vst3::residentBytes()};
}

/// A state of each program with one parameter moved, which no other program has.
std::vector<std::vector<char>> makeStates(const vst3::CModuleFile& module)
{
    std::vector<std::vector<char>> states;
    vst3::CVstHost host(*module.factory());
    for (int i = 0; i < kPrograms; ++i) {
        host.controller->setParamNormalized(kProgramId, i / (kPrograms - 1.0));
        host.controller->setParamNormalized(9, 0.3 + 0.01 * i);
        states.push_back(host.save());
    }
    return states;
}

TEST(TestVst3Instances, AThousandAreMadeRestoredPlayedAndGoneInTheMemoryOfTheFirstFew)
{
    std::string error;
    const vst3::CModuleFile module(THUMPCRAFT_MODULE, error);
    ASSERT_NE(module.factory(), nullptr) << error;
    const std::vector<std::vector<char>> states = makeStates(module);
    const vst3::CChannels in(2, std::vector<double>(300, 0.1));
    const int crowds = kIsWatched ? 4 : 100;
    std::size_t made = 0;
    CMemory before;
    for (int crowd = 0; crowd < crowds; ++crowd) {
        std::vector<std::unique_ptr<vst3::CVstHost>> hosts;
        for (int i = 0; i < 10; ++i) {
            vst3::CVstHost& host = *hosts.emplace_back(std::make_unique<vst3::CVstHost>(*module.factory()));
            const std::vector<char>& state = states[made++ % kPrograms];
            ASSERT_TRUE(host.restore(state));
            ASSERT_EQ(host.save(), state);
            host.activateBuses(false);
            host.start();
            host.play(in, 2);
            host.stop();
            ASSERT_EQ(host.failure(), "");
        }
        hosts.clear();
        const CMemory now = memoryNow();
        if (crowd < kPrograms) // by then each has had its turn at each place
            before = now;
        if (kIsWatched || crowd % 10 != 9)
            continue;
        EXPECT_LE(now.inUse, before.inUse + 4096) << crowd;
        EXPECT_LE(now.resident, before.resident + 2'000'000) << crowd;
    }
}

} // namespace
