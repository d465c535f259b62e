// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAlignedSamples.h"
#include "Audio/Filters/ConvolverKernels.h"

#include <array>
#include <span>

namespace qrb {

/// Samples of a line at even and at odd places, apart. Without odd ones: zeros.
struct CPhasesIn {
    const double* even;
    const double* odd;
};

/// The same for what is made; nobody asks for what is null.
struct CPhasesOut {
    double* even;
    double* odd;
};

/// Uniformly partitioned convolution of a line whose samples at even and at odd places come and go apart: half of them
/// may be zeros, and half of what comes out need not be made, by which transforms and products fall away. What is left out
/// changes no bit of the rest, and can be had again at any time. Late by one of the plan's blocks of pairs.
/// Thread: the owner's.
class CPhasedSegment {
public:
    /// `plan` outlives the segment. Allocates.
    CPhasedSegment(const platform::CBlockTransformPlan& plan, std::span<const double> taps,
                   const CConvolverKernels& kernels);

    /// Goes on as if the samples at even and at odd places had always been these. `work` as in process().
    void prime(double evenLevel, double oddLevel, double* work);
    /// Runs `count` pairs; adds to `out` where `isAdded`, else replaces it. `in` and `out` do not overlap. `work` is
    /// scratch for a spectrum, aligned to a cache line.
    void process(const CPhasesIn& in, const CPhasesOut& out, std::size_t count, bool isAdded, double* work);

private:
    struct CInput {
        CAlignedSamples frame;   ///< two blocks: the one that comes in, and the one before it
        CAlignedSamples history; ///< ring of spectra of frames
    };
    struct COutput {
        CAlignedSamples block;
        bool isMade = false;
    };

    void take(const CPhasesIn& in, std::size_t from, std::size_t length);
    void give(const COutput& output, double* to, std::size_t length, bool isAdded) const;
    void transform(CInput& input, double* work);
    void make(std::size_t phase, double* work);
    void runBlock(double* work);

    const platform::CBlockTransformPlan* m_plan;
    const CConvolverKernels* m_kernels;
    std::size_t m_block;
    CSpectrumShape m_shape;
    CAlignedSamples m_evenTaps;
    CAlignedSamples m_oddTaps;
    CAlignedSamples m_lateOddTaps; ///< a pair later: how samples at odd places reach those at even ones
    CInput m_even;
    CInput m_odd;
    std::array<COutput, 2> m_outputs; ///< at even, at odd places
    std::size_t m_oddBlocks = 0;      ///< as many more until all that is left of odd samples is zeros
    bool m_hasOdd = false;            ///< in the block that comes in
    std::size_t m_incoming = 0;       ///< where its block begins in the frames
    std::size_t m_newest = 0;
    std::size_t m_position = 0; ///< in the block
};

} // namespace qrb
