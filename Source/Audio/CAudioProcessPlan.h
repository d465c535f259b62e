// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioGraphChanges.h"
#include "Core/CArray.h"
#include "Core/CCheckedObject.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace qrb {

class CAudioLineSource;
class CAudioProcessBase;

/// The graph of an instance as a flat list, for blocks in which nothing changes: nodes that only hold others are gone,
/// lines lead straight to who works on them, and nodes of one definition that do not wait for each other (those of the
/// bands, of channel groups) run in one go. The samples are those of the graph, bit for bit.
///
/// A block with a change runs through the graph itself. The plan stays good for the blocks after it unless lines or
/// links became others; then it is made anew behind the first block that leaves them alone. Thread: audio.
class CAudioProcessPlan : public CCheckedObject {
public:
    explicit CAudioProcessPlan(CAudioGraphChanges& changes) : m_changes(changes) {}

    /// Chooses the way of the next block, before anything is sent into the graph. `paramChanges` counts the changes that
    /// nodes may have been told of.
    void beginBlock(CAudioProcessBase& root, std::uint32_t paramChanges);
    /// Runs the block of the graph that `source` feeds through `root`.
    void process(CAudioLineSource& source, CAudioProcessBase& root);
    /// Forgets the nodes; to be called before any of them goes outside of process().
    void clear();
    /// Off: each block runs through the graph. For comparisons.
    void setEnabled(bool isEnabled) { m_isEnabled = isEnabled; }
    /// How the nodes of a step run.
    enum class EStep { together, inSeries, inPieces };
    /// Adds nodes of one definition that run in one go, or a single one.
    void addStep(std::span<CAudioProcessBase* const> nodes, EStep kind);

    [[nodiscard]] std::size_t stepCount() const { return m_steps.size(); }
    /// The node of a step that has just one; else null.
    [[nodiscard]] CAudioProcessBase* singleNode(std::size_t step) const;
    /// Makes one of several steps in a row.
    void joinSteps(std::size_t first, std::size_t last, EStep kind);

    [[nodiscard]] bool isMade() const { return !m_nodes.empty(); }
    /// Nodes that run together with others.
    [[nodiscard]] std::size_t jointCount() const { return countNodes(EStep::together); }
    /// Nodes that run in series with others.
    [[nodiscard]] std::size_t seriesCount() const { return countNodes(EStep::inSeries); }

    /// Nodes that run in pieces with others.
    [[nodiscard]] std::size_t pieceCount() const { return countNodes(EStep::inPieces); }

private:
    struct CStep {
        std::size_t nodeCount;
        EStep kind;
    };

    void run();
    [[nodiscard]] std::size_t countNodes(EStep kind) const;

    CAudioGraphChanges& m_changes;
    CArray<CAudioProcessBase*> m_nodes; ///< in the order they run
    CArray<CStep> m_steps;              ///< what each step takes of them
    std::uint32_t m_structure = 0;
    std::uint32_t m_requests = 0;
    std::uint32_t m_paramChanges = 0;
    bool m_isEnabled = true;
};

} // namespace qrb
