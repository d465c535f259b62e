// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Hosts/Juce/Digest.h"

#include <cstring>
#include <iostream>

using juce::AudioChannelSet;
using juce::String;

namespace {

constexpr int kFrames = 6000;

template <class T>
String digest(const CSignal& signal)
{
    std::uint64_t hash = 14695981039346656037U;
    for (int channel = 0; channel < signal.getNumChannels(); ++channel) {
        for (int i = 0; i < signal.getNumSamples(); ++i) {
            const T sample = static_cast<T>(signal.getSample(channel, i));
            unsigned char bytes[sizeof(T)];
            std::memcpy(bytes, &sample, sizeof sample);
            for (const unsigned char byte : bytes)
                hash = (hash ^ byte) * 1099511628211U;
        }
    }
    return String::toHexString(static_cast<juce::int64>(hash));
}

} // namespace

CDigest digestOf(const CDigestJob& job)
{
    juce::StringArray words{juce::File::getSpecialLocation(juce::File::currentExecutableFile).getFullPathName(),
                            "--digest",
                            job.bundle,
                            job.state.getFullPathName(),
                            String(job.mainChannels),
                            String(job.keyChannels),
                            String(job.run.rate),
                            job.run.precision == EPrecision::twofold ? "64" : "32"};
    for (const int block : job.run.blocks)
        words.add(String(block));
    juce::ChildProcess process;
    if (!process.start(words, juce::ChildProcess::wantStdOut))
        return {};
    const juce::StringArray out = juce::StringArray::fromTokens(process.readAllProcessOutput().trim(), " ", "");
    process.waitForProcessToFinish(10000);
    return out.size() == 2 ? CDigest{out[0], out[1]} : CDigest{};
}

int printDigest(const juce::StringArray& arguments)
{
    juce::AudioPluginFormatManager formats;
    formats.addFormat(new juce::VST3PluginFormat);
    juce::OwnedArray<juce::PluginDescription> found;
    formats.getFormat(0)->findAllTypesForFile(found, arguments[0]);
    juce::MemoryBlock state;
    if (found.isEmpty() || !juce::File(arguments[1]).loadFileAsData(state))
        return 1;
    const int mainChannels = arguments[2].getIntValue();
    const int keyChannels = arguments[3].getIntValue();
    CRun run{.rate = arguments[4].getDoubleValue(),
             .precision = arguments[5] == "64" ? EPrecision::twofold : EPrecision::single,
             .blocks = {}};
    for (int i = 6; i < arguments.size(); ++i)
        run.blocks.push_back(arguments[i].getIntValue());
    CHostedPlugin plugin(formats, *found[0]);
    const AudioChannelSet keys =
        keyChannels > 0 ? AudioChannelSet::canonicalChannelSet(keyChannels) : AudioChannelSet::disabled();
    if (!plugin.isThere() || !plugin.setLayout(AudioChannelSet::canonicalChannelSet(mainChannels), keys))
        return 1;
    plugin.restore(state);
    const CSignal out = plugin.prepareAndPlay(noise(mainChannels + keyChannels, kFrames), run);
    std::cout << digest<double>(out) << " " << digest<float>(out) << std::endl;
    return 0;
}
