// SPDX-License-Identifier: GPL-3.0-or-later
// State, threads, memory.
#include "Tests/Hosts/Juce/CHostedPlugin.h"
#include "Tests/Hosts/Juce/Checks.h"
#include "Tools/Vst3Host/ResidentBytes.h"

#include <atomic>
#include <thread>

namespace {

constexpr int kProgramParam = 72;

void randomise(CHostedPlugin& plugin, int seed)
{
    juce::Random random(seed);
    for (int i = 1; i < kProgramParam; ++i)
        plugin.param(i).setValue(random.nextFloat());
    static_cast<void>(plugin.prepareAndPlay(noise(2, 512), {})); // this host tells values with the audio
    runMessages();
}

/// The state of the plug-in within that of the host replaced by other bytes.
juce::MemoryBlock withForeignState(const juce::MemoryBlock& state, const juce::MemoryBlock& bytes)
{
    const auto xml = juce::AudioProcessor::getXmlFromBinary(state.getData(), static_cast<int>(state.getSize()));
    juce::XmlElement* const inner = xml->getChildByName("IComponent");
    inner->deleteAllTextElements();
    inner->addTextElement(bytes.toBase64Encoding());
    juce::MemoryBlock out;
    juce::AudioProcessor::copyXmlToBinary(*xml, out);
    return out;
}

double residentMegabytes()
{
    return static_cast<double>(vst3::residentBytes()) / 1048576.0;
}

} // namespace

void checkState(CBench& bench)
{
    CReport::title("State");
    CHostedPlugin plugin(bench.formats, bench.plugin);
    const CSignal in = noise(2, 8000);
    bool isValued = true;
    bool isStated = true;
    bool isHeard = true;
    for (int seed = 0; seed < (bench.isShort ? 1 : 8); ++seed) {
        randomise(plugin, seed);
        const juce::MemoryBlock state = plugin.save();
        CHostedPlugin other(bench.formats, bench.plugin);
        other.restore(state);
        runMessages(20);
        isValued = isValued && other.texts() == plugin.texts();
        isStated = isStated && other.save() == state;
        isHeard = isHeard && isAlike(other.prepareAndPlay(in, {}), plugin.prepareAndPlay(in, {}));
    }
    bench.report.check(isValued, "values come back in a new instance");
    bench.report.check(isStated, "its state is the same to the byte");
    bench.report.check(isHeard, "it sounds the same");

    const juce::MemoryBlock state = plugin.save();
    for (const int size : {0, 1, 100, 5000}) {
        juce::MemoryBlock bytes(static_cast<std::size_t>(size));
        juce::Random random(size);
        random.fillBitsRandomly(bytes.getData(), bytes.getSize());
        plugin.restore(withForeignState(state, bytes));
    }
    bench.report.check(plugin.save() == state, "foreign states change nothing");
}

void checkThreads(CBench& bench)
{
    CReport::title("Threads");
    const CSignal in = noise(2, bench.isShort ? 4096 : 96000);
    const CRun run{.blocks = {128}};
    std::vector<std::unique_ptr<CHostedPlugin>> plugins;
    std::vector<CSignal> alone;
    for (int i = 0; i < 2; ++i) {
        plugins.push_back(std::make_unique<CHostedPlugin>(bench.formats, bench.plugin));
        randomise(*plugins.back(), i);
        alone.push_back(plugins.back()->prepareAndPlay(in, run));
        plugins.back()->prepare(run);
    }
    std::vector<CSignal> together(2);
    {
        std::thread other([&] { together[1] = plugins[1]->play(in, run); });
        together[0] = plugins[0]->play(in, run);
        other.join();
    }
    bench.report.check(isAlike(together[0], alone[0]) && isAlike(together[1], alone[1]),
                       "two instances on two threads sound as alone");

    // The audio goes on while the message thread saves, restores and reads.
    const juce::MemoryBlock states[] = {plugins[0]->save(), plugins[1]->save()};
    CHostedPlugin& busy = *plugins[0];
    busy.prepare(run);
    std::atomic<bool> isEnding{false};
    bool isSound = true;
    std::thread audio([&] {
        while (!isEnding)
            isSound = isSound && isFinite(busy.play(noise(2, 1024), run));
    });
    for (int i = 0; i < (bench.isShort ? 4 : 40); ++i) {
        busy.restore(states[i % 2]);
        runMessages(5);
        static_cast<void>(busy.save());
        for (int param = 0; param <= kProgramParam; ++param)
            static_cast<void>(busy.param(param).getText(busy.param(param).getValue(), 64));
        busy->setCurrentProgram(i % std::max(1, busy->getNumPrograms()));
    }
    isEnding = true;
    audio.join();
    bench.report.check(isSound, "states, programs and texts while audio runs");
    // What the host has still to tell comes with the audio, so that the state is the last word behind it.
    static_cast<void>(busy.play(noise(2, 1024), run));
    runMessages();
    busy.restore(states[1]);
    static_cast<void>(busy.play(noise(2, 1024), run));
    runMessages();
    bench.report.check(busy.save() == states[1], "the last state counts");
}

void checkComingAndGoing(CBench& bench)
{
    CReport::title("Coming and going");
    double before = 0.0;
    double worst = 0.0;
    bool isFine = true;
    const int rounds = bench.isShort ? 4 : 60;
    for (int i = 0; i < rounds; ++i) {
        if (i == rounds / 3)
            before = residentMegabytes();
        const CStopwatch watch;
        CHostedPlugin plugin(bench.formats, bench.plugin);
        worst = std::max(worst, watch.elapsed());
        isFine = isFine && isFinite(plugin.prepareAndPlay(noise(2, 600), {.rate = i % 2 == 0 ? 48000.0 : 96000.0}));
    }
    const double growth = residentMegabytes() - before;
    CReport::note("slowest instance " + juce::String(worst, 1) + " ms, growth " + juce::String(growth, 2) + " MB");
    bench.report.check(isFine && growth < 4.0, juce::String(rounds) + " instances one after the other");
    std::vector<std::unique_ptr<CHostedPlugin>> all;
    for (int i = 0; i < (bench.isShort ? 2 : 20); ++i)
        all.push_back(std::make_unique<CHostedPlugin>(bench.formats, bench.plugin));
    for (const auto& plugin : all)
        isFine = isFine && isFinite(plugin->prepareAndPlay(noise(2, 600), {}));
    bench.report.check(isFine, juce::String(static_cast<int>(all.size())) + " instances at once");
}
