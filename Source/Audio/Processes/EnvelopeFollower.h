// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Processes/LanePlaces.h"

#include <cstddef>
#include <span>

namespace qrb {

/// How far a follower's stage moves in a sample: all of its coefficient, scaled by the ratio of the smaller to the larger
/// of input and state (slow for large differences), or by one less that ratio (slow near the target).
enum class EFollowerMode { fast, normal, slow };

struct CFollowerSettings {
    double attack = 0.01;  ///< seconds
    double release = 0.25; ///< seconds
    EFollowerMode attackMode = EFollowerMode::normal;
    EFollowerMode releaseMode = EFollowerMode::normal;
    bool isInverse = false;  ///< follows a gain: falling is the attack
    bool isFeedback = false; ///< follows the input's ratio to the last output
    double minRate = 0.2;    ///< lower bound of what a mode scales by
    double punch = 1.0;      ///< 0 to 1: how little the early, fast stages reach the output
};

/// Four one-pole stages in a row, each half as fast as the one before it; the output blends them.
struct CFollower {
    static constexpr int kStages = 4;

    double attack[kStages];
    double release[kStages];
    /// A stage moves by offset + scale * ratio of its coefficient, `minRate` at least. Scales are -1, 0 or 1.
    double attackOffset, attackScale;
    double releaseOffset, releaseScale;
    double minRate;
    double weights[kStages]; ///< the last is 1
    double norm;
};

struct CFollowerState {
    double stages[CFollower::kStages];
    double last; ///< blended stages of the last sample
};

[[nodiscard]] CFollower makeFollower(const CFollowerSettings& settings, double sampleRate);

/// Where a follower starts: a gain at 1, a level at 0; with feedback at 1, since it divides by its own output.
[[nodiscard]] CFollowerState restOfFollower(const CFollowerSettings& settings);

/// A line that a follower runs on.
struct CFollowerLine {
    const CFollower* follower = nullptr;
    CFollowerState* state = nullptr;
    const double* in = nullptr;
    const double* opening = nullptr; ///< only read by loops that hold
    double* out = nullptr;           ///< may be an input
    bool isGain = false;             ///< only read by EFollowerLoop::mixed; the line then holds if it has an opening
};

/// The forms of the loop. One that holds follows a gain, and its first stage rises only while the second input is at or
/// above it; otherwise it keeps its value. Lines of several forms without feedback can run in one `mixed` loop.
enum class EFollowerLoop { level, gain, holdingGain, levelFeedback, gainFeedback, holdingGainFeedback, mixed };
constexpr std::size_t kFollowerLoops = 7;
[[nodiscard]] EFollowerLoop followerLoop(const CFollowerSettings& settings, bool isHolding);

/// Runs any number of lines side by side, since each waits for its own last sample most of the time. The result does not
/// depend on how many there are, nor on `width`.
void runFollowers(EFollowerLoop loop, std::span<const CFollowerLine> lines, std::size_t count, EVectorWidth width);
void runFollowers(EFollowerLoop loop, std::span<const CFollowerLine> lines, std::size_t count);

using FFollowerKernel = void (*)(const CFollowerLine* lines, std::size_t count);

/// Loops in the order of the others, only where the processor has the vectors.
[[nodiscard]] CWideKernels<FFollowerKernel> wideFollowerKernels();

} // namespace qrb
