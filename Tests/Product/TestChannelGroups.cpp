// SPDX-License-Identifier: GPL-3.0-or-later
// Channels, groups, keys and pairs, each against a one-channel instance that plays the same alone: to the bit, with the
// noise floor off.
#include "Audio/CAudioParamCollector.h"
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Audio/Presets/CAudioPresetList.h"
#include "Core/CAppData.h"
#include "Tests/Product/CProductRig.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>

namespace {

constexpr std::size_t kFrames = 12000;

std::string number(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

void setRouting(CProductRig& rig, const char* name, int channel, int value)
{
    rig.set(std::string("io-params.") + name + ":0:" + std::to_string(channel) + "=" + std::to_string(value));
}

/// Everything that groups have of their own, by the scheme of a group, for the group at a place.
void setGroup(CProductRig& rig, int scheme, int place)
{
    const auto set = [&](const std::string& name, int element, double value) {
        rig.set("modThumpcraft." + name + ":" + std::to_string(place) + ":" + std::to_string(element) + "=" +
                number(value));
    };
    set("outgain", 0, scheme - 4);
    set("drymix", 0, scheme % 3 * 20);
    set("gate-enable", 0, scheme % 2);
    set("gate-threshold", 0, scheme - 30);
    set("gate-params.lookahead", 0, 0.6 * scheme);
    set("eq-position", 0, scheme % 3);
    set("eq-params.mode", scheme % 5, scheme + 1);
    set("eq-params.gain", scheme % 5, 6 - scheme);
    set("comp-keysrc", 0, scheme % 4 == 3 ? 0 : 1);
    for (int band = 0; band < 3; ++band) {
        set("comp-enable", band, (scheme + band) % 3 > 0);
        set("comp-threshold", band, 3 * scheme - band - 40);
        set("comp-ratio", band, 1.5 + scheme); // to one
        set("comp-attack", band, 7 * scheme + 1);
        set("sat-enable", band, (scheme + band) % 4 == 0);
        set("sat-mode", band, (scheme + band) % 11);
        set("sat-drive", band, scheme);
        set("bandgain", band, band - scheme % 3);
    }
}

/// The signal alone in the first group, with a key of its own if there is one.
std::vector<double> playAlone(int scheme, const std::vector<double>& in, const std::vector<double>* key = nullptr)
{
    CProductRig rig({48000.0, 1, 1, key != nullptr ? 1 : 0, 3});
    setGroup(rig.set("denorm-enable=0"), scheme, 0);
    if (key == nullptr)
        return rig.run({in}, 512)[0];
    setRouting(rig, "sidechain", 0, 1);
    setRouting(rig, "sidechain-mute", 1, 1);
    return rig.run({in, *key}, 512)[0];
}

/// Eight channels straight through, each in a group of its own with the scheme of its number; `more` is set of each.
template <class FMore>
CChannels playTogether(const CChannels& in, const CProductRig::CShape& shape, const FMore& more)
{
    CProductRig rig(shape);
    rig.set("denorm-enable=0");
    for (int channel = 0; channel < 8; ++channel) {
        setRouting(rig, "in-routing", channel, channel + 1);
        setRouting(rig, "out-routing", channel, channel < shape.outputs ? channel + 1 : 0);
        setRouting(rig, "grouping", channel, channel);
        setGroup(rig, channel, channel);
        more(rig, channel);
    }
    return rig.run(in, 512);
}

TEST(TestChannelGroups, EightGroupsOfOneChannelSoundAsEachDoesAlone)
{
    const CChannels in = makeNoise(8, kFrames);
    const CChannels out = playTogether(in, {48000.0, 8, 8, 0, 3}, [](CProductRig& rig, int channel) {
        setRouting(rig, "grouping", channel, 7 - channel);
    });
    for (int channel = 0; channel < 8; ++channel) {
        const auto place = static_cast<std::size_t>(channel);
        EXPECT_TRUE(out[place] == playAlone(7 - channel, in[place])) << channel;
    }
}

TEST(TestChannelGroups, KeysOfTheExternalBusReachTheChannelsThatChooseThem)
{
    // Six main channels and two of a key bus; some listen to themselves or to another main channel.
    constexpr int kSources[] = {6, 7, 2, 6, 0, 7, 6, 7};
    const CChannels in = makeNoise(8, kFrames);
    const CChannels out = playTogether(in, {48000.0, 6, 6, 2, 3}, [&](CProductRig& rig, int channel) {
        setRouting(rig, "sidechain", channel, kSources[channel]);
        setRouting(rig, "sidechain-mute", channel, channel >= 6);
    });
    for (std::size_t channel = 0; channel < 6; ++channel)
        EXPECT_TRUE(out[channel] ==
                    playAlone(static_cast<int>(channel), in[channel], &in[static_cast<std::size_t>(kSources[channel])]))
            << channel;
}

TEST(TestChannelGroups, PairsOfAnyTwoChannelsAreMidAndSideBetweenTheRouters)
{
    // Pairs by number; the fourth stays without a partner.
    constexpr int kPairs[] = {1, 2, 2, 3, 0, 1, 4, 3};
    const CChannels in = makeNoise(8, kFrames);
    const CChannels out = playTogether(in, {48000.0, 8, 8, 0, 3}, [&](CProductRig& rig, int channel) {
        setRouting(rig, "ms-pairs", channel, kPairs[channel]);
    });
    for (const auto& [first, second] : {std::pair{0, 5}, {1, 2}, {3, 7}}) {
        const std::vector<double>& a = in[static_cast<std::size_t>(first)];
        const std::vector<double>& b = in[static_cast<std::size_t>(second)];
        std::vector<double> mid(kFrames);
        std::vector<double> side(kFrames);
        for (std::size_t n = 0; n < kFrames; ++n) {
            side[n] = (b[n] - a[n]) * -0.5;
            mid[n] = b[n] + side[n];
        }
        mid = playAlone(first, mid);
        side = playAlone(second, side);
        for (std::size_t n = 0; n < kFrames; ++n) {
            ASSERT_EQ(out[static_cast<std::size_t>(first)][n], mid[n] + side[n]) << first << ", frame " << n;
            ASSERT_EQ(out[static_cast<std::size_t>(second)][n], mid[n] - side[n]) << second << ", frame " << n;
        }
    }
    for (const int channel : {4, 6}) {
        const auto place = static_cast<std::size_t>(channel);
        EXPECT_TRUE(out[place] == playAlone(channel, in[place])) << channel;
    }
}

double rms(const std::vector<double>& samples)
{
    double sum = 0.0;
    for (const double sample : samples)
        sum += sample * sample;
    return std::sqrt(sum / static_cast<double>(samples.size()));
}

/// The level of the first output while the key is loud, against a silent key; the other main channels, which may be in
/// its group, are silent.
double keyEffect(CProductRig& rig, CChannels in, std::size_t keys)
{
    rig.change("modThumpcraft.comp-enable=1");
    rig.change("modThumpcraft.comp-threshold=-40");
    rig.change("modThumpcraft.comp-ratio=10:1");
    for (std::size_t channel = 1; channel < in.size() - keys; ++channel)
        std::fill(in[channel].begin(), in[channel].end(), 0.0);
    double levels[2];
    for (double& level : levels) {
        rig.restart();
        level = rms(rig.run(in, 512)[0]);
        for (std::size_t channel = in.size() - keys; channel < in.size(); ++channel)
            std::fill(in[channel].begin(), in[channel].end(), 0.0);
    }
    return levels[0] / levels[1];
}

TEST(TestChannelGroups, RoutingPresetsSendChannelsWhereTheirNamesSay)
{
    // Of each output the channel from 1 on and its group, "--" for none.
    struct CCase {
        const char* name;
        const char* outputs;
        int inputs;
        std::size_t keys;
    };
    const CCase cases[] = {{"Default Stereo", "10 20", 2, 0},
                           {"2.1 Stereo", "10 20 --", 3, 0},
                           {"5.1 Surround (Multi)", "10 20 30 40 50 60", 6, 0},
                           {"5.1 Surround (Groups)", "10 20 31 42 53 63", 6, 0},
                           {"7.1 Surround (Multi)", "10 20 30 40 50 60 70 80", 8, 0},
                           {"7.1 Surround (Groups)", "10 20 31 42 53 63 74 84", 8, 0},
                           {"Dual Mono", "10 21", 2, 0},
                           {"Mid-Side Stereo", "ms", 2, 0},
                           {"Mono To Stereo", "10 10", 2, 0},
                           {"Stereo Side-Chain", "10 20", 4, 2},
                           {"Mono Side-Chain", "10 --", 2, 1},
                           {"Force Mono", "10 --", 2, 0}};
    const auto gain = [](int group) { return std::pow(10.0, (group - 3) / 20.0); };
    std::size_t place = 0;
    for (const CCase& row : cases) {
        const int outputs = static_cast<int>(std::string(row.outputs).size() + 1) / 3 + (row.outputs[0] == 'm');
        CProductRig rig({44100.0, std::min(row.inputs, outputs), outputs, row.inputs - std::min(row.inputs, outputs)});
        for (int group = 0; group < 8; ++group)
            rig.set("modThumpcraft.outgain:" + std::to_string(group) + "=" + std::to_string(group - 3));
        rig.start();
        qrb::CAudioPresetList list;
        const qrb::CByteArray bytes =
            qrb::CAppData::findScope("global")->readData("routing-presets-sys", qrb::kPresetListChunk);
        ASSERT_FALSE(list.load(bytes.span()));
        ASSERT_EQ(list.banks[0].presets.size(), std::size(cases));
        const qrb::CAudioPreset& preset = list.banks[0].presets[place++];
        ASSERT_EQ(preset.visibleName().toUtf8(), row.name);
        qrb::CAudioParamRegistry* const registry =
            rig.instance().paramCollector().findRegistry("plugin.param-registry-io");
        ASSERT_FALSE(registry->activatePreset(preset, nullptr, -1)) << row.name;
        rig.restart();
        const CChannels in = makeNoise(static_cast<std::size_t>(row.inputs), 4000);
        const CChannels out = rig.run(in, 512);
        for (std::size_t output = 0; output < out.size(); ++output) {
            std::vector<double> want(out[output].size(), 0.0);
            const char* const told = row.outputs + 3 * output;
            for (std::size_t n = 0; n < want.size(); ++n) {
                if (row.outputs[0] == 'm')
                    want[n] = 0.5 * gain(0) * (in[0][n] + in[1][n]) +
                              (output == 0 ? 0.5 : -0.5) * gain(1) * (in[0][n] - in[1][n]);
                else if (told[0] != '-')
                    want[n] = gain(told[1] - '0') * in[static_cast<std::size_t>(told[0] - '1')][n];
            }
            EXPECT_LE(largestDifference(out[output], want, static_cast<std::size_t>(rig.latency())), 1e-10)
                << row.name << ", output " << output;
        }
        if (row.keys > 0) {
            EXPECT_LE(keyEffect(rig, in, row.keys), 0.3) << row.name;
        }
    }
}

TEST(TestChannelGroups, EveryLayoutSoundsAtOnceAndListensToItsSideChain)
{
    for (const int mains : {1, 2, 6, 8})
        for (const int keys : {0, 1, 2}) {
            const std::string where = std::to_string(mains) + " and " + std::to_string(keys);
            CProductRig rig({44100.0, mains, mains, keys});
            qrb::CArray<qrb::CString> labels[2];
            for (int channel = 0; channel < mains + keys; ++channel)
                labels[channel < mains ? 0 : 1].append("C");
            rig.instance().reportLayout(labels[0], labels[1]);
            const CChannels in = makeNoise(static_cast<std::size_t>(mains + keys), 4000);
            const CChannels out = rig.run(in, 512);
            for (std::size_t channel = 0; channel < out.size(); ++channel)
                EXPECT_LE(largestDifference(out[channel], in[channel], static_cast<std::size_t>(rig.latency())), 1e-10)
                    << where << ", channel " << channel;
            const double effect = keyEffect(rig, in, static_cast<std::size_t>(keys));
            // Eight main channels leave no internal channel for a key.
            if (keys > 0 && mains < 8)
                EXPECT_LE(effect, 0.3) << where;
            else
                EXPECT_NEAR(effect, 1.0, 1e-9) << where;
        }
}

} // namespace
