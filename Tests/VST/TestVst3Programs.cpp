// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Vst3Host/CModuleFile.h"
#include "Tools/Vst3Host/CVstHost.h"

#include <gtest/gtest.h>

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace {

constexpr ParamID kProgramId = 72;

TEST(TestVst3Programs, WhatTheAudioAskedForComesBeforeALaterCall)
{
    std::string error;
    const vst3::CModuleFile module(THUMPCRAFT_MODULE, error);
    vst3::CVstHost host(*module.factory());
    host.start();
    const std::vector<char> state = host.save();
    const vst3::CChannels silence(2, std::vector<double>(64));
    host.play(silence, 2, {{kProgramId, 0, 0.5}});
    host.controller->setParamNormalized(kProgramId, 1.0);
    EXPECT_EQ(host.controller->getParamNormalized(kProgramId), 1.0);
    const std::vector<char> last = host.save();
    host.play(silence, 2, {{kProgramId, 0, 0.5}});
    EXPECT_TRUE(host.restore(state));
    EXPECT_EQ(host.controller->getParamNormalized(kProgramId), 0.0);
    EXPECT_EQ(host.save(), state);
    host.play(silence, 2, {{kProgramId, 0, 0.5}});
    EXPECT_NE(host.save(), state); // asked for before it is saved

    vst3::CVstHost other(*module.factory());
    EXPECT_TRUE(other.restore(last));
    EXPECT_EQ(other.controller->getParamNormalized(kProgramId), 1.0);
}

TEST(TestVst3Programs, AHostIsNotCalledBackWhileItSetsAValue)
{
    std::string error;
    const vst3::CModuleFile module(THUMPCRAFT_MODULE, error);
    vst3::CVstHost host(*module.factory());
    host.start();
    host.handler.restarts.clear();
    host.controller->setParamNormalized(kProgramId, 1.0);
    EXPECT_TRUE(host.handler.restarts.empty());
    EXPECT_FALSE(host.text(kProgramId, 1.0).empty()); // now it may be told
    EXPECT_EQ(host.handler.restarts, std::vector<int32>{kParamValuesChanged});
}

} // namespace
