// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Support/CRenderFixture.h"

#include <limits>
#include <random>

namespace {

using CWords = std::vector<std::string>;

CWords operator+(CWords a, const CWords& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

constexpr const char* kModule = THUMPCRAFT_MODULE;

/// Renders with the engine that is linked in, and with the built module in a host.
class TestVst3Render : public CRenderFixture {
protected:
    TestVst3Render()
    {
        for (const std::size_t count : {1U, 2U, 3U, 8U}) {
            std::mt19937 engine(static_cast<unsigned>(count));
            std::vector<std::vector<double>> channels(count, std::vector<double>(9000));
            for (std::vector<double>& channel : channels)
                for (double& sample : channel)
                    sample = static_cast<double>(engine()) / 4294967296.0 - 0.5;
            writeAudio(std::to_string(count), 48000.0, channels);
        }
    }

    std::string runAs(const CWords& words, bool isHosted)
    {
        return run(isHosted ? CWords{"--vst3", kModule} + words : words);
    }

    std::string rendered(const CWords& words, bool isHosted)
    {
        EXPECT_EQ(runAs(words + CWords{"--format", "double", path("out")}, isHosted), "")
            << testing::PrintToString(words);
        return samples("out");
    }
};

TEST_F(TestVst3Render, BothWaysGiveTheSameBits)
{
    const std::vector<CWords> cases{
        {path("1")},
        {path("2"), "--preset", "Puncher-Clipper", "--block", "37"},
        {path("8"), "--preset", "mix glue", "--double", "--raw"},
        {path("3"), "--set", "Oversmp=4X", "--set", "Clipper=On", "--set", "1OGain=9", "--block", "9001"},
        {path("2"), "--sidechain", path("1"), "--set", "1C2Enab=On", "--set", "1C2Thrs=-40", "--set", "1C2Rto=8:1"},
        {path("2"), "--double", "--at", "0.05", "Bands=1", "--at", "0.0501", "1S1Enab=On", "--at", "0.1", "Bypass=On",
         "--block", "64"},
        {path("2"), "--set", "Program=soft saturation", "--set", "1OGain=@0.25", "--set", "1C1Rto=2:1"},
        {path("1"), "--at", "0.05", "Program=Creamy Drums", "--at", "0.1", "1DryMix=@0.5", "--block", "100"},
    };
    std::string last;
    for (const CWords& words : cases) {
        const std::string engine = rendered(words, false);
        EXPECT_TRUE(engine == rendered(words, true)) << testing::PrintToString(words);
        EXPECT_NE(engine, last);
        last = engine;
    }
}

TEST_F(TestVst3Render, StatesGoBothWays)
{
    const CWords settings{"--preset", "Creamy Drums", "--set", "1O1Gain=-3", "--set", "1S3Enab=On"};
    const std::string expected = rendered(settings + CWords{path("2")}, false);
    for (const bool isSavedByHost : {false, true}) {
        ASSERT_EQ(runAs(settings + CWords{"--save-state", path("state")}, isSavedByHost), "");
        for (const bool isHosted : {false, true})
            EXPECT_TRUE(expected == rendered({"--state", path("state"), path("2")}, isHosted));
    }
}

TEST_F(TestVst3Render, BothWaysRefuseWhatTheyCannotRead)
{
    for (const char* setting : {"1OGain=loud", "1OGain=loud3", "1OGain=3 dB", "Oversmp=4XX", "Bypass=yes",
                                "1C1Rto=inf:1", "1OGain=@1.5", "1OGain=@", "Program=nobody"}) {
        const std::string engine = runAs({"--set", setting, path("2"), path("out")}, false);
        EXPECT_NE(engine.find("is no value of"), std::string::npos) << setting;
        EXPECT_EQ(runAs({"--set", setting, path("2"), path("out")}, true), engine);
    }
    EXPECT_FALSE(std::filesystem::exists(path("out")));
}

TEST_F(TestVst3Render, SurvivesSamplesThatAreNoNumbers)
{
    std::vector<double> samples(3000, 0.1);
    samples[500] = std::numeric_limits<double>::quiet_NaN();
    samples[900] = std::numeric_limits<double>::infinity();
    writeAudio("odd", 48000.0, {samples, samples});
    const CWords words{path("odd"), "--preset", "Mix Glue", "--json", "--block", "1048576"};
    EXPECT_TRUE(rendered(words, false) == rendered(words, true));
    EXPECT_NE(m_printed.find("\"peakInDb\": null, "), std::string::npos) << m_printed;
}

TEST_F(TestVst3Render, WhatAModuleCannotDoIsOneLine)
{
    const CWords files{path("2"), path("out")};
    const std::vector<CWords> wrong{
        {"--bank", path("2")},       {"--preset-file", path("2")},         {"--save-preset", path("x")},
        {"--preset", "nobody"},      {"--set", "modThumpcraft.outgain=1"}, {"--set", "1OGain:0:1=1"},
        {"--at", "100", "1OGain=1"}, {"--sidechain", path("8")},           {"--state", path("2")}};
    for (const CWords& words : wrong) {
        const std::string error = runAs(words + files, true);
        EXPECT_FALSE(error.empty()) << testing::PrintToString(words);
        EXPECT_EQ(error.find('\n'), std::string::npos) << error;
        EXPECT_FALSE(std::filesystem::exists(path("out")));
    }
    std::filesystem::create_directories(path("Bundle.vst3/Contents/x86_64-linux"));
    const std::pair<std::string, const char*> modules[] = {{path("2"), "cannot be loaded"},
                                                           {path("missing"), "there is no module"},
                                                           {m_folder.string(), "there is no module"},
                                                           {path("Bundle.vst3"), "there is no module"},
                                                           {"libz.so.1", "there is no module"}};
    for (const auto& [module, message] : modules)
        EXPECT_NE(run(CWords{"--vst3", module} + files).find(message), std::string::npos) << module;
}

} // namespace
