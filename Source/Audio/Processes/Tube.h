// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Processes/LanePlaces.h"

#include <cstddef>
#include <span>

namespace qrb {

/// Half of a saturator: linear within `limit` / `knee`, then bending towards `limit`, around a working point.
struct CTubeCurveSettings {
    double limit = 1.0;
    double bias = 0.0; ///< working point, in units of the limit
    double knee = 4.0; ///< what is below 1.0001 counts as that
    double gain = 1.0; ///< input gain, before the drive
};

/// What a saturator is made of. Gains are factors, frequencies hertz.
struct CTubeSettings {
    CTubeCurveSettings curves[2];
    double blockerFrequency = 5.0;
    bool isBlockedByFeedback = false; ///< constant offsets are taken from the curve's input instead of its output
    bool hasLowPass = false;
    double lowPassFrequency = 21000.0;
    double morphGain = 0.0; ///< of the filtered output that moves the sound from one curve to the other
    double morphBias = 0.0;
    double morphFrequency = 3000.0;
    double morphBandwidth = 2.0; ///< octaves
    double drive = 1.0;
    double bias = 0.0;       ///< added to both curves'
    bool hasBalance = false; ///< both curves share the gain of the second, in the ratio `balance`
    double balance = 1.0;
    double correctionBelow = 0.0; ///< decibels of output a decibel of drive below 0
    double correctionAbove = 0.0; ///< from 0 on
    double correctionHigh = 0.0;  ///< in addition above 30 dB
    double outputGain = 1.0;
};

/// A number of the running saturator, at the middle of the morph and its difference from curve to curve.
struct CTubeTerm {
    double middle;
    double span;
};

struct CTube {
    CTubeTerm gain, centre, knee, reach, norm; ///< `knee` ends the linear part, `reach` is what the bend adds at most
    double blocker;                            ///< coefficient of the constant blockers
    double lowPass;
    double filterA1, filterA2;             ///< w = last output + A1 * w1 + A2 * w2
    double filterLast, filterB1, filterB2; ///< morph = Last * last output + B1 * w1 + B2 * w2 + bias
    double morphBias;
};

struct CTubeState {
    double blocker1, blocker2, lowPass, filter1, filter2, last;
};

/// Defined in TubeDesign.cpp.
[[nodiscard]] CTube makeTube(const CTubeSettings& settings, double sampleRate);

/// Settled on silence.
[[nodiscard]] CTubeState restOfTube(const CTube& tube, bool isBlockedByFeedback);

/// A line that a saturator runs on.
struct CTubeLine {
    const CTube* tube = nullptr;
    CTubeState* state = nullptr;
    const double* in = nullptr;
    double* out = nullptr; ///< may be the input
};

/// The forms of the loop. A monitor's output is the morph, 0 for the first curve to 1 for the second, while the sound runs
/// on inside.
enum class ETubeLoop { blocked, blockedMonitor, feedback, feedbackMonitor };
constexpr std::size_t kTubeLoops = 4;
[[nodiscard]] constexpr ETubeLoop tubeLoop(bool isBlockedByFeedback, bool isMonitor)
{
    return static_cast<ETubeLoop>((isBlockedByFeedback ? 2 : 0) + (isMonitor ? 1 : 0));
}

/// Runs any number of lines side by side, as each waits for its own last output. The result does not depend on how many
/// there are, nor on `width`.
void runTubes(ETubeLoop loop, std::span<const CTubeLine> lines, std::size_t count, EVectorWidth width);
void runTubes(ETubeLoop loop, std::span<const CTubeLine> lines, std::size_t count);

using FTubeKernel = void (*)(const CTubeLine* lines, std::size_t count);

/// Loops in the order of the others, only where the processor has the vectors.
[[nodiscard]] CWideKernels<FTubeKernel> wideTubeKernels();

} // namespace qrb
