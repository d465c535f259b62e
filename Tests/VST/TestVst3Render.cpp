// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Product/BoundedFile.h"
#include "Tools/Render/CProductModule.h"
#include "Tools/Render/CRenderJob.h"
#include "Tools/Render/CSoundFile.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using CWords = std::vector<std::string>;

CWords operator+(CWords a, const CWords& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

constexpr const char* kModule = THUMPCRAFT_MODULE;

/// Renders with the engine that is linked in, and with the built module in a host.
class TestVst3Render : public testing::Test {
protected:
    void SetUp() override
    {
        const auto* info = testing::UnitTest::GetInstance()->current_test_info();
        m_folder = fs::temp_directory_path() / (std::string("thumpcraft-") + info->name() + std::to_string(getpid()));
        fs::create_directories(m_folder);
        for (const int channels : {1, 2, 3, 8}) {
            std::mt19937 engine(static_cast<unsigned>(channels));
            std::vector<double> samples(static_cast<std::size_t>(channels) * 9000);
            for (double& sample : samples)
                sample = static_cast<double>(engine()) / 4294967296.0 - 0.5;
            render::CSoundFileWriter file;
            std::string error;
            EXPECT_TRUE(
                file.open(path(std::to_string(channels)), channels, 48000.0, render::EFileFormat::float64, error));
            EXPECT_TRUE(file.write(samples, error) && file.finish(error)) << error;
        }
    }
    void TearDown() override { fs::remove_all(m_folder); }

    [[nodiscard]] std::string path(const std::string& name) const { return (m_folder / (name + ".wav")).string(); }
    [[nodiscard]] std::string content(const std::string& name) const
    {
        std::string bytes;
        EXPECT_EQ(product::readBoundedFile(path(name), std::size_t{1} << 26, bytes), "");
        return bytes;
    }

    /// Gives the error line, empty on success.
    static std::string run(const CWords& words, bool isHosted)
    {
        CWords all = words;
        if (isHosted)
            all.insert(all.begin(), {"--vst3", kModule});
        std::string error;
        const std::optional<render::CRenderOptions> options = render::parseOptions(all, error);
        if (!options)
            return error;
        const render::CProductModule module(error);
        render::CRenderJob job(*options);
        testing::internal::CaptureStdout();
        const bool isDone = job.run(error);
        testing::internal::GetCapturedStdout();
        return isDone ? "" : error;
    }

    /// The samples of a rendering, and what stands behind them.
    std::string rendered(CWords words, bool isHosted)
    {
        words.insert(words.end(), {"--format", "double", path("out")});
        EXPECT_EQ(run(words, isHosted), "") << testing::PrintToString(words);
        const std::string bytes = content("out");
        return bytes.substr(bytes.find("data")); // in front of it stands the time
    }

    fs::path m_folder;
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
        ASSERT_EQ(run(settings + CWords{"--save-state", path("state")}, isSavedByHost), "");
        for (const bool isHosted : {false, true})
            EXPECT_TRUE(expected == rendered({"--state", path("state"), path("2")}, isHosted));
    }
}

TEST_F(TestVst3Render, WhatAModuleCannotDoIsOneLine)
{
    const CWords files{path("2"), path("out")};
    const std::vector<CWords> wrong{
        {"--bank", path("2")},     {"--preset-file", path("2")},         {"--save-preset", path("x")},
        {"--preset", "nobody"},    {"--set", "modThumpcraft.outgain=1"}, {"--set", "1OGain=loud"},
        {"--set", "1OGain:0:1=1"}, {"--at", "100", "1OGain=1"},          {"--sidechain", path("8")},
        {"--state", path("2")}};
    for (const CWords& words : wrong) {
        const std::string error = run(words + files, true);
        EXPECT_FALSE(error.empty()) << testing::PrintToString(words);
        EXPECT_EQ(error.find('\n'), std::string::npos) << error;
        EXPECT_FALSE(fs::exists(path("out")));
    }
    for (const std::string& module : {path("2"), path("missing"), m_folder.string(), std::string("/proc/self/exe")})
        EXPECT_NE(run(CWords{"--vst3", module} + files, false), "") << module;
}

} // namespace
