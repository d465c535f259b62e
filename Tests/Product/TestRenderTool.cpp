// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Product/CProductRig.h"
#include "Tests/Support/CRenderFixture.h"

#include <cmath>
#include <fstream>

namespace {

class TestRenderTool : public CRenderFixture {
protected:
    CChannels writeNoise(const std::string& name, int channels, std::size_t frames, double rate)
    {
        const CChannels noise = makeNoise(static_cast<std::size_t>(channels), frames);
        writeAudio(name, rate, noise);
        return noise;
    }

    CChannels readFile(const std::string& name)
    {
        render::CSoundFileReader file;
        std::string error;
        EXPECT_TRUE(file.open(path(name), error)) << error;
        const auto channels = static_cast<std::size_t>(file.channels());
        std::vector<double> interleaved(file.frames() * channels);
        EXPECT_EQ(file.read(interleaved.data(), file.frames()), file.frames());
        CChannels out(channels);
        for (std::size_t i = 0; i < interleaved.size(); ++i)
            out[i % channels].push_back(interleaved[i]);
        return out;
    }

    /// Runs with one band, so that the phase stays.
    std::string render(CWords words)
    {
        words.insert(words.begin(), {"--set", "modThumpcraft.xo-count=0"});
        return run(words);
    }
};

TEST_F(TestRenderTool, OutputIsAlignedAndAsLongAsTheInputForAnyChannelCountAndRate)
{
    for (const int channels : {1, 2, 3, 8})
        for (const double rate : {22050.0, 44100.0, 96000.0}) {
            const CChannels in = writeNoise("in.wav", channels, 3001, rate);
            ASSERT_EQ(render({path("in.wav"), path("out.wav"), "--double", "--format", "double", "--block", "100"}),
                      "");
            const CChannels out = readFile("out.wav");
            ASSERT_EQ(out.size(), in.size());
            for (std::size_t channel = 0; channel < in.size(); ++channel) {
                ASSERT_EQ(out[channel].size(), 3001u);
                EXPECT_LE(largestDifference(out[channel], in[channel], 0), 1e-10) << channels << " channels " << rate;
            }
        }
}

TEST_F(TestRenderTool, RawKeepsTheLatencyAndLosesNothing)
{
    const CChannels in = writeNoise("in.wav", 2, 2000, 44100.0);
    ASSERT_EQ(render({"--raw", "--double", "--format", "double", path("in.wav"), path("out.wav")}), "");
    const CChannels out = readFile("out.wav");
    ASSERT_EQ(out[0].size(), 2723u);
    for (std::size_t channel = 0; channel < 2; ++channel)
        EXPECT_LE(largestDifference(out[channel], in[channel], 723), 1e-10);
}

TEST_F(TestRenderTool, SettingsAndEventsReachTheirParameters)
{
    const CChannels in = writeNoise("in.wav", 2, 44100, 44100.0);
    ASSERT_EQ(render({path("in.wav"), path("out.wav"), "--format", "double", "--double", "--set",
                      "modThumpcraft.outgain=-6", "--at", "0.5", "bypass-enable=On"}),
              "");
    const CChannels out = readFile("out.wav");
    const double low = std::pow(10.0, -0.3);
    EXPECT_NEAR(out[0][22049], in[0][22049] * low, 1e-10);
    EXPECT_NEAR(out[0][22050 + 662], in[0][22050 + 662], 1e-10);
}

TEST_F(TestRenderTool, RoutingOfFewerChannelsThanTheFileHasIsKept)
{
    const CChannels in = writeNoise("in.wav", 2, 2000, 44100.0);
    ASSERT_EQ(render({path("in.wav"), path("out.wav"), "--format", "double", "--double", "--set",
                      "io-params.in-routing:0:1=0", "--set", "io-params.out-routing:0:1=0"}),
              "");
    const CChannels out = readFile("out.wav");
    EXPECT_LE(largestDifference(out[0], in[0], 0), 1e-10);
    EXPECT_EQ(out[1], std::vector<double>(2000, 0.0));
}

TEST_F(TestRenderTool, IntegerFormatsLimitInsteadOfWrappingAround)
{
    writeNoise("in.wav", 1, 4000, 44100.0);
    ASSERT_EQ(render({path("in.wav"), path("out.wav"), "--format", "pcm16", "--set", "modThumpcraft.outgain=12"}), "");
    const CChannels in = readFile("in.wav");
    const CChannels out = readFile("out.wav");
    for (std::size_t i = 0; i < out[0].size(); ++i)
        ASSERT_GE(out[0][i] * in[0][i], -1e-4) << "the sign flipped at " << i;
}

TEST_F(TestRenderTool, WhatCannotBeDoneIsOneLineAndLeavesNoFile)
{
    writeNoise("in.wav", 2, 1000, 44100.0);
    writeNoise("nine.wav", 9, 10, 44100.0);
    std::ofstream(path("text.wav")) << "this is no audio";
    std::ofstream(path("empty.wav")).flush();
    const std::string in = path("in.wav");
    const std::string out = path("out.wav");
    const std::vector<std::vector<std::string>> lines{
        {in},
        {in, out, out},
        {in, out, "--frobnicate"},
        {in, out, "--block", "0"},
        {in, out, "--block", "12x"},
        {in, out, "--format", "pcm8"},
        {in, out, "--set", "modThumpcraft.outgain"},
        {in, out, "--set", "modThumpcraft.nothing=1"},
        {in, out, "--set", "modThumpcraft.outgain:8=1"},
        {in, out, "--set", "modThumpcraft.outgain:0:-1=1"},
        {in, out, "--set", "bypass-enable:1=On"},
        {in, out, "--set", "modThumpcraft.outgain=loud"},
        {in, out, "--at", "0.1", "instance-name=x"},
        {in, out, "--at", "-1", "bypass-enable=On"},
        {in, out, "--at", "5", "bypass-enable=On"},
        {in, out, "--sidechain", path("missing.wav")},
        {path("missing.wav"), out},
        {path("nine.wav"), out},
        {path("text.wav"), out},
        {path("empty.wav"), out},
        {m_folder.string(), out},
        {in, path("no/such/folder/out.wav")},
        {in, m_folder.string()},
    };
    for (const std::vector<std::string>& words : lines) {
        const std::string error = render(words);
        std::string told;
        for (const std::string& word : words)
            told += word + " ";
        EXPECT_FALSE(error.empty()) << told;
        EXPECT_EQ(error.find('\n'), std::string::npos) << error;
        EXPECT_FALSE(std::filesystem::exists(out)) << told;
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_folder), {}), 4) << "something half-written was left";
}

TEST_F(TestRenderTool, ListNamesEveryParameterWithItsRange)
{
    ASSERT_EQ(render({"--list"}), "");
    EXPECT_NE(m_printed.find("modThumpcraft.outgain"), std::string::npos);
    EXPECT_NE(m_printed.find("(-12.0 to 12.0 dB)"), std::string::npos);
    ASSERT_EQ(render({"--latency", "--rate", "96000"}), "");
    EXPECT_EQ(m_printed, "982\n");
}

} // namespace
