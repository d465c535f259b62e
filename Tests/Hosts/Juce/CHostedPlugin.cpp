// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Hosts/Juce/CHostedPlugin.h"

#include <algorithm>
#include <cmath>
#include <iostream>

CSignal noise(int channels, int frames, int seed)
{
    juce::Random random(seed);
    CSignal out(channels, frames);
    for (int channel = 0; channel < channels; ++channel) {
        for (int i = 0; i < frames; ++i)
            out.setSample(channel, i, static_cast<double>(random.nextFloat() - 0.5F));
    }
    return out;
}

bool isAlike(const CSignal& left, const CSignal& right)
{
    constexpr double kTolerance = 2e-6; // one step of single precision at a peak of 16
    bool isAlike = left.getNumChannels() == right.getNumChannels() && left.getNumSamples() == right.getNumSamples();
    for (int channel = 0; isAlike && channel < left.getNumChannels(); ++channel)
        isAlike =
            std::equal(left.getReadPointer(channel), left.getReadPointer(channel) + left.getNumSamples(),
                       right.getReadPointer(channel), [](double x, double y) { return std::abs(x - y) <= kTolerance; });
    return isAlike;
}

bool isFinite(const CSignal& signal)
{
    for (int channel = 0; channel < signal.getNumChannels(); ++channel) {
        const double* const samples = signal.getReadPointer(channel);
        if (!std::all_of(samples, samples + signal.getNumSamples(), [](double x) { return std::isfinite(x); }))
            return false;
    }
    return true;
}

double peakOf(const CSignal& signal)
{
    return signal.getMagnitude(0, signal.getNumSamples());
}

CHostedPlugin::CHostedPlugin(juce::AudioPluginFormatManager& formats, const juce::PluginDescription& description)
{
    juce::String error;
    m_instance = formats.createPluginInstance(description, 48000.0, 512, error);
    if (m_instance == nullptr)
        std::cout << "  no instance: " << error << "\n";
}

bool CHostedPlugin::setLayout(const juce::AudioChannelSet& main, const juce::AudioChannelSet& keys)
{
    m_instance->releaseResources();
    juce::AudioProcessor::BusesLayout layout;
    layout.inputBuses.add(main);
    layout.inputBuses.add(keys);
    layout.outputBuses.add(main);
    return m_instance->setBusesLayout(layout);
}

void CHostedPlugin::prepare(const CRun& run)
{
    m_instance->releaseResources();
    m_instance->setProcessingPrecision(run.precision == EPrecision::twofold ? juce::AudioProcessor::doublePrecision
                                                                            : juce::AudioProcessor::singlePrecision);
    m_instance->setNonRealtime(run.isOffline);
    m_instance->prepareToPlay(run.rate, *std::max_element(run.blocks.begin(), run.blocks.end()));
}

template <class T>
CSignal CHostedPlugin::playAs(const CSignal& in, const CRun& run)
{
    juce::MidiBuffer midi;
    CSignal out(m_instance->getMainBusNumOutputChannels(), in.getNumSamples());
    std::size_t next = 0;
    for (int position = 0; position < in.getNumSamples();) {
        const int frames = std::min(run.blocks[next++ % run.blocks.size()], in.getNumSamples() - position);
        if (run.before)
            run.before(position);
        juce::AudioBuffer<T> block(in.getNumChannels(), frames);
        for (int channel = 0; channel < in.getNumChannels(); ++channel) {
            for (int i = 0; i < frames; ++i)
                block.setSample(channel, i, static_cast<T>(in.getSample(channel, position + i)));
        }
        m_instance->processBlock(block, midi);
        for (int channel = 0; channel < out.getNumChannels(); ++channel) {
            for (int i = 0; i < frames; ++i)
                out.setSample(channel, position + i, static_cast<double>(block.getSample(channel, i)));
        }
        position += frames;
    }
    return out;
}

CSignal CHostedPlugin::play(const CSignal& in, const CRun& run)
{
    return run.precision == EPrecision::twofold ? playAs<double>(in, run) : playAs<float>(in, run);
}

CSignal CHostedPlugin::prepareAndPlay(const CSignal& in, const CRun& run)
{
    prepare(run);
    CSignal out = play(in, run);
    m_instance->releaseResources();
    return out;
}

juce::MemoryBlock CHostedPlugin::save() const
{
    juce::MemoryBlock state;
    m_instance->getStateInformation(state);
    return state;
}

void CHostedPlugin::restore(const juce::MemoryBlock& state) const
{
    m_instance->setStateInformation(state.getData(), static_cast<int>(state.getSize()));
}

juce::StringArray CHostedPlugin::texts() const
{
    juce::StringArray out;
    for (const juce::AudioProcessorParameter* const each : m_instance->getParameters())
        out.add(each->getText(each->getValue(), 127));
    return out;
}

void runMessages(int milliseconds)
{
    juce::MessageManager::getInstance()->runDispatchLoopUntil(milliseconds);
}
