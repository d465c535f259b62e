// SPDX-License-Identifier: GPL-3.0-or-later
// What comes out: layouts, formats, cuttings, latency, automation.
#include "Tests/Hosts/Juce/CHostedPlugin.h"
#include "Tests/Hosts/Juce/Checks.h"
#include "Tests/Hosts/Juce/Digest.h"

#include <cmath>

using juce::AudioChannelSet;

namespace {

constexpr int kBypass = 0;
constexpr int kBands = 2;
constexpr int kProgramParam = 72;

/// A sound that is not the default: bands compress, saturate, and the clipper is on.
void makeBusy(CHostedPlugin& plugin)
{
    juce::Random random(7);
    for (int i = 1; i < kProgramParam; ++i)
        plugin.param(i).setValue(random.nextFloat());
    for (const int solo : {5, 6, 7})
        plugin.param(solo).setValue(0.0F);
}

int peakPlace(const CSignal& signal)
{
    int place = 0;
    for (int i = 0; i < signal.getNumSamples(); ++i) {
        if (std::abs(signal.getSample(0, i)) > std::abs(signal.getSample(0, place)))
            place = i;
    }
    return place;
}

void checkLayout(CBench& bench, const AudioChannelSet& main, const AudioChannelSet& keys)
{
    const juce::String name = main.getDescription() + (keys.isDisabled() ? "" : ", keys " + keys.getDescription());
    CHostedPlugin plugin(bench.formats, bench.plugin);
    if (!bench.report.check(plugin.setLayout(main, keys), name + ": taken"))
        return;
    makeBusy(plugin);
    const CSignal in = noise(main.size() + keys.size(), bench.isShort ? 1500 : 6000);
    CRun run{.precision = EPrecision::twofold, .blocks = {256}};
    static_cast<void>(plugin.prepareAndPlay(in, run)); // settings arrive with the first block
    const CSignal whole = plugin.prepareAndPlay(in, run);
    bench.report.check(whole.getNumChannels() == main.size() && isFinite(whole) && peakOf(whole) > 1e-3,
                       name + ": all channels, finite, not silent");
    run = {.blocks = {333, 1, 64}};
    bench.report.check(isAlike(plugin.prepareAndPlay(in, run), whole),
                       name + ": the same for other blocks and single precision");
    if (bench.isShort)
        return;
    const juce::TemporaryFile state;
    bench.report.check(state.getFile().replaceWithData(plugin.save().getData(), plugin.save().getSize()),
                       name + ": a state");
    CDigestJob job{bench.plugin.fileOrIdentifier, state.getFile(), main.size(), keys.size(), {}};
    const CDigest single = digestOf(job);
    job.run.precision = EPrecision::twofold;
    const CDigest twofold = digestOf(job);
    bool isEqual = twofold.whole.isNotEmpty() && single.rounded == twofold.rounded && single.whole != twofold.whole;
    for (const std::vector<int>& blocks : {std::vector<int>{1, 7, 64, 511, 2}, {4096}, {1000, 1, 24}}) {
        job.run.blocks = blocks;
        isEqual = isEqual && digestOf(job).whole == twofold.whole;
    }
    bench.report.check(isEqual, name + ": the same bits for each cutting, single precision is the double one rounded");
}

} // namespace

void checkLayouts(CBench& bench)
{
    CReport::title("Layouts, formats, block sizes");
    for (const AudioChannelSet& main : {AudioChannelSet::mono(), AudioChannelSet::stereo(),
                                        AudioChannelSet::create5point1(), AudioChannelSet::create7point1()}) {
        for (const AudioChannelSet& keys :
             {AudioChannelSet::disabled(), AudioChannelSet::mono(), AudioChannelSet::stereo()})
            checkLayout(bench, main, keys);
    }
    CHostedPlugin plugin(bench.formats, bench.plugin);
    bench.report.check(!plugin.setLayout(AudioChannelSet::create7point1point4()),
                       "more channels than there are: refused");
    bench.report.check(plugin.setLayout(AudioChannelSet::stereo()), "and stereo afterwards");

    bool isFine = true;
    for (const double rate : {44100.0, 48000.0, 88200.0, 96000.0, 176400.0, 192000.0}) {
        const CSignal out = plugin.prepareAndPlay(noise(2, 3000), {.rate = rate});
        isFine = isFine && isFinite(out) && peakOf(out) > 1e-3;
    }
    bench.report.check(isFine, "rates from 44100 to 192000 Hz in one instance");
}

void checkLatency(CBench& bench)
{
    CReport::title("Latency, tail, bypass, offline");
    CHostedPlugin plugin(bench.formats, bench.plugin);
    CRun run{.precision = EPrecision::twofold};
    CSignal impulse(2, 6000);
    impulse.clear();
    impulse.setSample(0, 100, 1.0);
    impulse.setSample(1, 100, 1.0);
    plugin.param(kBands).setValue(0.0F); // one: no crossover turns phases
    juce::StringArray latencies;
    bool isAligned = true;
    for (const double rate : {44100.0, 48000.0, 96000.0, 192000.0}) {
        run.rate = rate;
        for (const float bypass : {0.0F, 1.0F}) {
            plugin.param(kBypass).setValue(bypass);
            static_cast<void>(plugin.prepareAndPlay(impulse, run)); // brings the setting in
            const int place = peakPlace(plugin.prepareAndPlay(impulse, run));
            isAligned = isAligned && place == 100 + plugin->getLatencySamples();
        }
        latencies.add(juce::String(plugin->getLatencySamples()) + " at " + juce::String(rate) + " Hz");
    }
    CReport::note(latencies.joinIntoString(", "));
    bench.report.check(isAligned, "an impulse comes where the latency says, with bypass and without");
    const double tail = plugin->getTailLengthSeconds();
    CReport::note("tail " + juce::String(tail, 3) + " s");
    bench.report.check(std::isfinite(tail) && tail >= 0.0, "a finite tail");

    plugin.param(kBypass).setValue(0.0F);
    run = {};
    const int realtime = (plugin.prepare(run), plugin->getLatencySamples());
    const CSignal in = noise(2, 4000);
    run.isOffline = true;
    const CSignal out = plugin.prepareAndPlay(in, run);
    bench.report.check(isFinite(out) && plugin->getLatencySamples() == realtime, "offline has the same latency");
    plugin.prepare(run);
    plugin->setNonRealtime(false); // a host that forgets to prepare anew
    bench.report.check(isFinite(plugin.play(in, run)), "offline is left under way");
    plugin->reset();
    bench.report.check(isFinite(plugin.play(in, run)), "reset under way");
}

void checkAutomation(CBench& bench)
{
    CReport::title("Automation");
    CHostedPlugin plugin(bench.formats, bench.plugin);
    CRun run{.blocks = {64}};
    const CSignal in = noise(2, bench.isShort ? 4096 : 32768);
    int worst = -1;
    double peak = 0.0;
    plugin.prepare(run);
    for (int i = 0; i < kProgramParam; ++i) {
        juce::AudioProcessorParameter& param = plugin.param(i);
        run.before = [&](int position) {
            const float phase = static_cast<float>(position % 1024) / 512.0F;
            param.setValue(phase < 1.0F ? phase : 2.0F - phase);
        };
        const CSignal out = plugin.play(noise(2, bench.isShort ? 1024 : 4096, i), run);
        peak = std::max(peak, peakOf(out));
        if (!isFinite(out))
            worst = i;
        param.setValue(param.getDefaultValue());
    }
    CReport::note("highest peak " + juce::String(peak, 3));
    bench.report.check(worst < 0 && peak < 64.0, "each parameter up and down: finite and bounded");

    const auto automated = [&](CHostedPlugin& each) {
        juce::Random random(3);
        CRun moving{.blocks = {64}};
        moving.before = [&](int) {
            for (int i = 0; i < 4; ++i)
                each.param(1 + random.nextInt(kProgramParam - 1)).setValue(random.nextFloat());
        };
        return each.prepareAndPlay(in, moving);
    };
    CHostedPlugin one(bench.formats, bench.plugin);
    CHostedPlugin two(bench.formats, bench.plugin);
    const CSignal first = automated(one);
    bench.report.check(isFinite(first) && isAlike(first, automated(two)), "the same automation gives the same sound");
    runMessages();
    bench.report.check(one.texts() == two.texts() && one.save() == two.save(), "and the same values and state");
}
