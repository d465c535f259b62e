// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <juce_audio_processors/juce_audio_processors.h>
#include <memory>
#include <vector>

/// Channels of samples.
using CSignal = juce::AudioBuffer<double>;

enum class EPrecision { single, twofold };

/// White noise of the same samples for the same seed, exact in single precision.
[[nodiscard]] CSignal noise(int channels, int frames, int seed = 1);
/// Whether they differ by no more than the noise against denormal numbers brings, another one in each run, and by the
/// rounding to single precision.
[[nodiscard]] bool isAlike(const CSignal& left, const CSignal& right);
[[nodiscard]] bool isFinite(const CSignal& signal);
[[nodiscard]] double peakOf(const CSignal& signal);

/// What a run plays in.
struct CRun {
    double rate = 48000.0;
    EPrecision precision = EPrecision::single;
    std::vector<int> blocks{512}; ///< sizes of blocks, again and again
    bool isOffline = false;
    std::function<void(int)> before{}; ///< is told the position in front of each block; may be empty
};

/// One instance of the plug-in and what its host does with it. Thread: the message thread, but play().
class CHostedPlugin {
public:
    /// Holds no instance when that fails.
    CHostedPlugin(juce::AudioPluginFormatManager& formats, const juce::PluginDescription& description);

    [[nodiscard]] bool isThere() const { return m_instance != nullptr; }
    [[nodiscard]] juce::AudioPluginInstance& operator*() const { return *m_instance; }
    juce::AudioPluginInstance* operator->() const { return m_instance.get(); }
    [[nodiscard]] juce::AudioProcessorParameter& param(int index) const { return *m_instance->getParameters()[index]; }

    /// The same set on both sides; a disabled set of keys turns their bus off.
    [[nodiscard]] bool setLayout(const juce::AudioChannelSet& main, const juce::AudioChannelSet& keys = {});
    /// Starts from silence.
    void prepare(const CRun& run);
    /// Plays all of the signal, main channels first, then keys. Gives the main channels. Thread: audio.
    [[nodiscard]] CSignal play(const CSignal& in, const CRun& run);
    [[nodiscard]] CSignal prepareAndPlay(const CSignal& in, const CRun& run);
    [[nodiscard]] juce::MemoryBlock save() const;
    void restore(const juce::MemoryBlock& state) const;
    /// What all parameters show: of those that have steps the host may keep values in between.
    [[nodiscard]] juce::StringArray texts() const;

private:
    template <class T>
    CSignal playAs(const CSignal& in, const CRun& run);

    std::unique_ptr<juce::AudioPluginInstance> m_instance;
};

/// Lets the message thread do what waits for it.
void runMessages(int milliseconds = 60);
