// SPDX-License-Identifier: GPL-3.0-or-later
// What the product's chain costs: neutral, with everything on, each part alone, oversampled, in small blocks, and in
// silence after a loud passage. Copying the samples is the floor.
#include "Audio/Viz/CAudioVizCollector.h"
#include "Core/CWriteSeqBuffer.h"
#include "Tools/Render/CProductModule.h"
#include "Tools/Render/CRenderInstance.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <numbers>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr double kRate = 44100.0;

/// Kick, snare and hats over a noise floor: two seconds, different in each channel.
std::vector<std::vector<float>> makeDrums(int channelCount)
{
    constexpr int kFrames = 2 * 44100;
    std::mt19937 engine(1);
    std::vector<std::vector<float>> drums;
    for (int channel = 0; channel < channelCount; ++channel) {
        std::vector<float>& samples = drums.emplace_back(kFrames);
        for (int frame = 0; frame < kFrames; ++frame) {
            const double noise = static_cast<double>(engine()) / 2147483648.0 - 1.0;
            const double kick = std::fmod(frame / kRate, 0.5);
            const double snare = std::fmod(frame / kRate + 0.25, 0.5);
            const double hat = std::fmod(frame / kRate, 0.125);
            const double pitch = 2.0 * std::numbers::pi * (50.0 * kick - 5.0 * std::exp(-kick * 20.0));
            samples[static_cast<std::size_t>(frame)] = static_cast<float>(
                0.6 * std::sin(pitch) * std::exp(-kick * 12.0) + 0.3 * noise * std::exp(-snare * 20.0) +
                0.1 * noise * std::exp(-hat * 60.0) + 0.0003 * noise);
        }
    }
    return drums;
}

const std::string kGroup = "modThumpcraft.";
using CSettings = std::vector<std::string>;

CSettings operator+(CSettings left, const CSettings& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

CSettings bands(int count)
{
    return {kGroup + "xo-count=" + std::to_string(count - 1)};
}

CSettings eachBand(const std::string& name)
{
    return {kGroup + name + ":0:0=1", kGroup + name + ":0:1=1", kGroup + name + ":0:2=1"};
}

const CSettings kGate{kGroup + "gate-enable=1"};
const CSettings kClipper{kGroup + "clip-enable=1"};
const CSettings kFilters{kGroup + "eq-params.mode:0:0=3",  kGroup + "eq-params.mode:0:1=1",
                         kGroup + "eq-params.mode:0:2=1",  kGroup + "eq-params.mode:0:3=1",
                         kGroup + "eq-params.mode:0:4=2",  kGroup + "eq-params.gain:0:0=3",
                         kGroup + "eq-params.gain:0:1=-3", kGroup + "eq-params.gain:0:2=3",
                         kGroup + "eq-params.gain:0:3=-3", kGroup + "eq-params.gain:0:4=3"};
const CSettings kDrive{kGroup + "sat-drive:0:0=6", kGroup + "sat-drive:0:1=6", kGroup + "sat-drive:0:2=6"};
const CSettings kEverything =
    bands(3) + kGate + kFilters + eachBand("comp-enable") + eachBand("sat-enable") + kDrive + kClipper;

const CSettings kFourGroups{"io-params.grouping:0:2=1", "io-params.grouping:0:3=1", "io-params.grouping:0:4=2",
                            "io-params.grouping:0:5=2", "io-params.grouping:0:6=3", "io-params.grouping:0:7=3"};

/// A playing instance, fed from a loop of drums.
class CPlayer {
public:
    CPlayer(const CSettings& settings, int channels, int blockSize)
        : m_module(m_error), m_drums(makeDrums(channels)), m_silence(m_drums[0].size()), m_blockSize(blockSize),
          m_out(m_drums)
    {
        m_instance = std::make_unique<render::CRenderInstance>();
        if (m_instance->init())
            m_error = "the instance cannot be built";
        m_instance->setSampleRate(kRate);
        m_instance->setInputs({channels, false, false});
        m_instance->setOutputs({channels, false, false});
        m_instance->reportChannels(channels, 0);
        m_instance->start();
        for (const std::string& text : settings) {
            const auto setting = render::parseSetting(text, m_error);
            if (!setting || !m_instance->apply(*setting, m_error))
                return;
        }
        for (std::size_t channel = 0; channel < m_drums.size(); ++channel) {
            m_inputs.push_back(nullptr);
            m_outputs.push_back(m_out[channel].data());
        }
        for (int block = 0; block < 200; ++block) // fades and first uses
            play();
    }
    ~CPlayer() { m_instance->stop(); }

    const std::string& error() const { return m_error; }

    void play(bool isSilent = false)
    {
        if (m_position + static_cast<std::size_t>(m_blockSize) > m_silence.size())
            m_position = 0;
        for (std::size_t channel = 0; channel < m_drums.size(); ++channel)
            m_inputs[channel] = (isSilent ? m_silence : m_drums[channel]).data() + m_position;
        m_instance->processBlock(m_inputs.data(), m_outputs.data(), m_blockSize);
        m_position += static_cast<std::size_t>(m_blockSize);
        benchmark::ClobberMemory();
    }

    /// Starts or ends to listen to all meters and spectra.
    void look(bool isLooking)
    {
        constexpr std::uint32_t kClient = 1;
        qrb::CAudioVizCollector* collector = nullptr;
        if (m_instance->root().findObjectChecked("plugin.viz-collector", collector)) {
            m_error = "there is nothing to look at";
            return;
        }
        std::uint32_t id = kClient << 16;
        for (const char* const source :
             {"modMeterOut", "modMeterIODiff", "modSpectrum", "modSpectrum-sec", "modThumpcraft.modGate.modMeterIn",
              "modThumpcraft.modGate.modMeterGR", "modThumpcraft.modBand.mod.modMeterIn",
              "modThumpcraft.modBand.mod.modMeterIODiff", "modThumpcraft.modBand.mod.modComp.modMeterGR"}) {
            ++id;
            if (isLooking)
                collector->listen(qrb::CAudioVizCollector::kOwnInstance, qrb::CString("plugin.modMain.") + source, id);
            else
                collector->unlisten(id);
        }
        for (int block = 0; block < 200; ++block) {
            play();
            qrb::CWriteSeqBuffer records(4096); // makes those that modules will fill
            if (block % 20 == 0 && collector->writeData(kClient, 0.0, records))
                m_error = "nothing is to be seen";
        }
    }

private:
    std::string m_error;
    render::CProductModule m_module;
    std::vector<std::vector<float>> m_drums;
    std::vector<float> m_silence;
    int m_blockSize;
    std::vector<std::vector<float>> m_out;
    std::unique_ptr<render::CRenderInstance> m_instance;
    std::vector<const void*> m_inputs;
    std::vector<void*> m_outputs;
    std::size_t m_position = 0;
};

/// Counts frames, so that the time is told for one frame of all channels.
void countFrames(benchmark::State& state, int blockSize)
{
    state.counters["ns_per_frame"] = benchmark::Counter(static_cast<double>(state.iterations()) * blockSize * 1e-9,
                                                        benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void chain(benchmark::State& state, const CSettings& settings, int channels, int blockSize)
{
    CPlayer player(settings, channels, blockSize);
    if (!player.error().empty()) {
        state.SkipWithError(player.error().c_str());
        return;
    }
    for (auto _ : state)
        player.play();
    countFrames(state, blockSize);
}

/// While an editor shows all meters and the spectrum, or with it closed again.
void chainSeen(benchmark::State& state, const CSettings& settings, bool isOpen)
{
    constexpr int kBlock = 512;
    CPlayer player(settings, 2, kBlock);
    if (player.error().empty())
        player.look(true);
    if (player.error().empty() && !isOpen)
        player.look(false);
    if (!player.error().empty()) {
        state.SkipWithError(player.error().c_str());
        return;
    }
    for (auto _ : state)
        player.play();
    countFrames(state, kBlock);
}

/// Told beforehand: to find a number out, the hour would be played again and again.
constexpr int kSilentBlocks = 2000;

/// An hour of silence lies between the loud passage and what is measured.
void chainInSilence(benchmark::State& state, const CSettings& settings)
{
    constexpr int kBlock = 512;
    CPlayer player(settings, 2, kBlock);
    if (!player.error().empty()) {
        state.SkipWithError(player.error().c_str());
        return;
    }
    for (double seconds = 0.0; seconds < 3600.0; seconds += kBlock / kRate)
        player.play(true);
    for (auto _ : state)
        player.play(true);
    countFrames(state, kBlock);
}

void copyAlone(benchmark::State& state)
{
    constexpr int kBlock = 512;
    const auto in = makeDrums(2);
    auto out = in;
    for (auto _ : state) {
        for (std::size_t channel = 0; channel < in.size(); ++channel)
            std::memcpy(out[channel].data(), in[channel].data(), kBlock * sizeof(float));
        benchmark::ClobberMemory();
    }
    countFrames(state, kBlock);
}

BENCHMARK(copyAlone);
BENCHMARK_CAPTURE(chain, neutral, bands(1), 2, 512);
BENCHMARK_CAPTURE(chain, neutral_64, bands(1), 2, 64);
BENCHMARK_CAPTURE(chain, neutral_8_channels, bands(1) + kFourGroups, 8, 512);
BENCHMARK_CAPTURE(chain, gate, bands(1) + kGate, 2, 512);
BENCHMARK_CAPTURE(chain, equalizer, bands(1) + kFilters, 2, 512);
BENCHMARK_CAPTURE(chain, crossover_12, bands(3), 2, 512);
BENCHMARK_CAPTURE(chain, compressor, bands(1) + eachBand("comp-enable"), 2, 512);
BENCHMARK_CAPTURE(chain, saturator, bands(1) + eachBand("sat-enable") + kDrive, 2, 512);
BENCHMARK_CAPTURE(chain, clipper, bands(1) + kClipper, 2, 512);
BENCHMARK_CAPTURE(chain, everything, kEverything, 2, 512);
BENCHMARK_CAPTURE(chain, everything_64, kEverything, 2, 64);
BENCHMARK_CAPTURE(chain, everything_4096, kEverything, 2, 4096);
BENCHMARK_CAPTURE(chain, everything_8_channels, kEverything + kFourGroups, 8, 512);
BENCHMARK_CAPTURE(chain, everything_2X, kEverything + CSettings{"oversampling=2X"}, 2, 512);
BENCHMARK_CAPTURE(chain, everything_4X, kEverything + CSettings{"oversampling=4X"}, 2, 512);
BENCHMARK_CAPTURE(chain, everything_8X, kEverything + CSettings{"oversampling=8X"}, 2, 512);
BENCHMARK_CAPTURE(chain, recursive_8X, bands(1) + CSettings{"oversampling=8X", "lp-oversampling-enable=0"}, 2, 512);
BENCHMARK_CAPTURE(chain, linear_phase_8X, bands(1) + CSettings{"oversampling=8X"}, 2, 512);
BENCHMARK_CAPTURE(chainSeen, neutral_open, bands(1), true);
BENCHMARK_CAPTURE(chainSeen, neutral_closed, bands(1), false);
BENCHMARK_CAPTURE(chainSeen, everything_open, kEverything, true);
BENCHMARK_CAPTURE(chainSeen, everything_closed, kEverything, false);
BENCHMARK_CAPTURE(chainInSilence, gate, bands(1) + kGate)->Iterations(kSilentBlocks);
BENCHMARK_CAPTURE(chainInSilence, equalizer, bands(1) + kFilters)->Iterations(kSilentBlocks);
BENCHMARK_CAPTURE(chainInSilence, compressor, bands(1) + eachBand("comp-enable"))->Iterations(kSilentBlocks);
BENCHMARK_CAPTURE(chainInSilence, saturator, bands(1) + eachBand("sat-enable") + kDrive)->Iterations(kSilentBlocks);
BENCHMARK_CAPTURE(chainInSilence, clipper, bands(1) + kClipper)->Iterations(kSilentBlocks);
BENCHMARK_CAPTURE(chainInSilence, everything, kEverything)->Iterations(kSilentBlocks);

} // namespace

BENCHMARK_MAIN();
