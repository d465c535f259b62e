// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Product/CProductRig.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <numbers>
#include <string>

namespace {

constexpr double kRate = 44100.0;
constexpr double kTone = 1000.0;
constexpr std::size_t kFrames = 65536;

/// Kaiser window whose side lobes lie below -180 dB.
double window(std::size_t n, std::size_t count)
{
    const double x = 2.0 * static_cast<double>(n) / static_cast<double>(count - 1) - 1.0;
    return std::cyl_bessel_i(0.0, 24.0 * std::sqrt(1.0 - x * x)) / std::cyl_bessel_i(0.0, 24.0);
}

/// Amplitude at a frequency, of a sine of full scale 1.
double amplitudeAt(const std::vector<double>& windowed, double frequency)
{
    const std::complex<double> step = std::polar(1.0, -2.0 * std::numbers::pi * frequency / kRate);
    std::complex<double> turn = 1.0;
    std::complex<double> sum = 0.0;
    for (const double x : windowed) {
        sum += x * turn;
        turn *= step;
    }
    return std::abs(sum);
}

/// The loudest of what lies half way between the tone's harmonics, from 6.5 kHz up, in dB beneath the tone.
double loudestBetween(const std::vector<double>& samples)
{
    std::vector<double> windowed(samples.end() - static_cast<std::ptrdiff_t>(kFrames), samples.end());
    double sum = 0.0;
    for (std::size_t n = 0; n < kFrames; ++n) {
        const double w = window(n, kFrames);
        windowed[n] *= w;
        sum += w;
    }
    double loudest = 0.0;
    for (double frequency = 6500.0; frequency < 21000.0; frequency += kTone)
        loudest = std::max(loudest, amplitudeAt(windowed, frequency));
    return 20.0 * std::log10(2.0 * loudest / sum / 0.25);
}

/// A module crosses over in 15 ms and a filter's coefficients in 25 ms, both in raised-cosine shape: kilohertz away that
/// leaves next to nothing. Parameters of followers and gain computers change at once, but what they make then passes four
/// smoothing stages. A jump of a hundredth would stand at -90.
constexpr double kMost = -150.0;

/// A control, where it starts and ends, and what else has to be set.
struct CSweep {
    const char* control;
    double from, to;
    std::vector<std::string> settings;
};

std::vector<double> playSweep(const CSweep& sweep)
{
    const std::size_t frames = kFrames + 8192;
    std::vector<double> tone(frames);
    for (std::size_t n = 0; n < frames; ++n)
        tone[n] = 0.25 * std::sin(2.0 * std::numbers::pi * kTone / kRate * static_cast<double>(n));
    CProductRig rig({kRate, 2, 2, 0, 3});
    const std::string group = "modThumpcraft.";
    for (const std::string& setting : sweep.settings)
        rig.set(group + setting);
    for (std::size_t n = 8192; n < frames; n += 211) {
        const double part = static_cast<double>(n - 8192) / static_cast<double>(kFrames);
        rig.at(n, group + sweep.control + "=" + std::to_string(sweep.from + (sweep.to - sweep.from) * part));
    }
    return rig.run({tone, tone}, 512)[0];
}

TEST(TestControlSweeps, LeaveNothingBesideTheToneThatTheirLawsDoNotExplain)
{
    const std::vector<std::string> comp{"comp-enable:0:0=1", "comp-enable:0:1=1", "comp-enable:0:2=1",
                                        "comp-threshold:0:1=-30"};
    const std::vector<std::string> peak{"eq-params.mode:0:0=Peaking", "eq-params.gain:0:0=9", "eq-params.freq:0:0=800"};
    const std::vector<std::string> gate{"gate-enable=1", "gate-threshold=-10"};
    const std::vector<CSweep> sweeps{
        {"outgain", -12.0, 12.0, {}},
        {"bandgain:0:1", -18.0, 18.0, {}},
        {"drymix", 0.0, 100.0, {"bandgain:0:1=12"}},
        {"eq-params.gain:0:0", -12.0, 12.0, peak},
        {"eq-params.freq:0:0", 100.0, 8000.0, peak},
        {"eq-params.bw:0:0", 0.1, 6.0, peak},
        {"xo-freq:0:0", 200.0, 3500.0, {"bandgain:0:1=6"}},
        {"xo-freq:0:1", 900.0, 9000.0, {"bandgain:0:1=6"}},
        {"comp-threshold:0:1", -60.0, 0.0, comp},
        {"comp-ratio:0:1", 0.05, 1.0, comp},
        {"comp-attack:0:1", 1.0, 250.0, comp},
        {"comp-release:0:1", 1.0, 1500.0, comp},
        {"comp-params.knee", 0.0, 40.0, comp},
        {"comp-params.punch:0:1", 0.0, 100.0, comp},
        {"gate-threshold", -40.0, 0.0, gate},
        {"gate-ratio", 0.05, 1.0, gate},
        {"gate-params.lookahead", 0.0, 5.0, gate},
        {"sat-drive:0:1", -12.0, 24.0, {"sat-enable:0:1=1"}},
    };
    for (const CSweep& sweep : sweeps) {
        const double loudest = loudestBetween(playSweep(sweep));
        EXPECT_LE(loudest, kMost) << sweep.control;
    }
}

} // namespace
