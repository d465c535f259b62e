// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Processes/GainComputer.h"
#include "Audio/Processes/OnePole.h"
#include "Audio/Processes/Tube.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qrb {

namespace {

constexpr double kPi = std::numbers::pi;

struct CCurve {
    double centre, gain, norm, knee, reach;
};

double shape(double x, const CCurve& curve)
{
    const double over = std::abs(x) - curve.knee;
    if (over <= 0.0)
        return x;
    const double v = over / curve.reach;
    const double q = (1.0 + v) * (1.0 + v * v) + v * v * v * v * (2.0 / 3.0);
    return std::copysign((curve.knee + curve.reach) - curve.reach / q, x);
}

/// The curve at its working point, of unity gain over a row of probes from quiet to loud.
CCurve makeCurve(const CTubeCurveSettings& settings, double bias, double drive)
{
    constexpr double kProbes[] = {-0.6, -0.3, -0.15, -0.075, 0.6, 0.3, 0.15, 0.075};
    constexpr double kLeastKnee = 1.0001;
    // A curve biased far into its limit may answer no probe at all; its gain stays finite.
    constexpr double kLeastEnergy = 1e-24;
    CCurve curve{};
    curve.centre = (settings.bias + bias) * settings.limit;
    curve.gain = settings.gain * drive;
    curve.knee = settings.limit / std::max(kLeastKnee, settings.knee);
    curve.reach = settings.limit - curve.knee;
    const double rest = shape(curve.centre, curve);
    double straight = 0.0;
    double energy = 0.0;
    for (const double probe : kProbes) {
        const double response = shape(curve.centre + probe * curve.gain, curve) - rest;
        straight += probe * probe;
        energy += response * response;
    }
    curve.norm = std::sqrt(straight / std::max(energy, straight * kLeastEnergy));
    return curve;
}

/// Coefficient a of l += (x - l) * a that attenuates `frequency` by about 0.05 neper.
double lowPassCoefficient(double frequency, double sampleRate)
{
    constexpr double kLoss = 0.951229424500714; // exp(-0.05)
    constexpr double kTolerance = 0.001;
    constexpr int kMostSteps = 60;
    const double w = 2.0 * kPi * frequency / sampleRate;
    double bottom = 0.0;
    double top = 1.0;
    double middle = 0.5;
    for (int step = 0; step < kMostSteps; ++step) {
        middle = 0.5 * (bottom + top);
        const double real = std::cos(w) * middle + 1.0 - std::cos(w);
        const double imaginary = (middle - 1.0) * std::sin(w);
        const double inverseGain = std::sqrt(real * real + imaginary * imaginary) * kLoss / middle;
        if (std::abs(inverseGain - 1.0) <= kTolerance)
            break;
        (inverseGain < 1.0 ? top : bottom) = middle;
    }
    return middle;
}

/// Output gain that goes along with the drive.
double outputFactor(const CTubeSettings& settings)
{
    constexpr double kHighDrive = 30.0;
    const double drive = std::log(settings.curves[0].gain * settings.drive) * kDecibelsPerNeper;
    double change = drive * (drive < 0.0 ? settings.correctionBelow : settings.correctionAbove);
    if (drive > kHighDrive)
        change += (drive - kHighDrive) * settings.correctionHigh;
    return std::exp(change / kDecibelsPerNeper) * settings.outputGain;
}

CTubeTerm term(double first, double second)
{
    return {first + 0.5 * (second - first), second - first};
}

/// Low-pass of second order over the last output, with the morph's gain in its taps.
void setFilter(CTube& tube, const CTubeSettings& settings, double sampleRate)
{
    constexpr double kHalfLn2 = 0.34657359027997264;
    const double w = 2.0 * kPi * settings.morphFrequency / sampleRate;
    // Close to half the sample rate the hyperbolic sine would overflow.
    constexpr double kMostWidth = 300.0;
    const double width = kHalfLn2 * w * settings.morphBandwidth / std::sin(w);
    const double alpha = std::sin(w) * std::sinh(std::clamp(width, -kMostWidth, kMostWidth));
    const double scale = 1.0 / (1.0 + alpha);
    const double outer = 0.5 * (1.0 - std::cos(w)) * scale * settings.morphGain;
    tube.filterA1 = 2.0 * std::cos(w) * scale;
    tube.filterA2 = (alpha - 1.0) * scale;
    tube.filterLast = outer;
    tube.filterB1 = outer * (tube.filterA1 + 2.0);
    tube.filterB2 = outer * (tube.filterA2 + 1.0);
    tube.morphBias = settings.morphBias;
}

} // namespace

CTube makeTube(const CTubeSettings& settings, double sampleRate)
{
    CCurve first = makeCurve(settings.curves[0], settings.bias, settings.drive);
    CCurve second = makeCurve(settings.curves[1], settings.bias, settings.drive);
    if (settings.hasBalance) {
        const double balance = std::sqrt(settings.balance);
        first.norm = second.norm * balance;
        second.norm /= balance;
    }
    const double factor = outputFactor(settings);
    CTube tube{};
    tube.gain = term(first.gain, second.gain);
    tube.centre = term(first.centre, second.centre);
    tube.knee = term(first.knee, second.knee);
    tube.reach = term(first.reach, second.reach);
    tube.norm = term(first.norm * factor, second.norm * factor);
    tube.blocker = onePoleCoefficient(settings.blockerFrequency, sampleRate);
    tube.lowPass = settings.hasLowPass ? lowPassCoefficient(settings.lowPassFrequency, sampleRate) : 1.0;
    setFilter(tube, settings, sampleRate);
    return tube;
}

} // namespace qrb
