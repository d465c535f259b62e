// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CSampleBuffer.h"
#include "Core/CArray.h"

#include <cstddef>
#include <span>

namespace qrb {

class CAudioModule;
class CAudioProcessBase;
class CAudioProcessTerminalBase;

/// One planned block of terminals in a row, run in short pieces so that the last one works on a piece while the first one
/// is at the next: what each of them waits for then overlaps. Lives for the block. Thread: audio.
class CAudioPieces {
public:
    /// Samples from which cutting pays.
    static constexpr int kShortestBlock = 256;

    /// `nodes` are terminals, none of them fading; `length` is that of the block.
    CAudioPieces(std::span<CAudioProcessBase* const> nodes, int length);
    CAudioPieces(const CAudioPieces&) = delete;
    CAudioPieces& operator=(const CAudioPieces&) = delete;

    void run();

private:
    struct CNode {
        CAudioProcessTerminalBase* node = nullptr;
        CArray<CSampleBuffer, 4> inputs;  ///< whole blocks; empty where a line comes from a node before this one
        CArray<CSampleBuffer, 2> outputs; ///< whole blocks
    };

    [[nodiscard]] int lengthOf(int piece) const;
    void begin(CNode& node, int piece, CArray<CAudioModule*, 16>& modules);
    void end(CNode& node, int piece);
    void finish(CNode& node);

    CArray<CNode, 8> m_nodes;
    int m_length;
    int m_pieceLength;
    int m_pieceCount;
};

} // namespace qrb
