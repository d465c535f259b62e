// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioLineRoute.h"
#include "Core/CArray.h"
#include "Core/CQrbStdAllocator.h"

#include <cstddef>

namespace qrb {

class CAudioLineSink;
class CAudioLineSource;
class CAudioProcessBase;
class CAudioProcessComposite;
class CAudioProcessConnection;
class CAudioProcessPlan;
struct CAudioGraphChanges;

/// Makes the plan of a graph as it is wired now: follows each line to where it is worked on, then puts the nodes into an
/// order in which as many as possible of one definition meet. Lives only as long as it takes. Thread: audio.
class CAudioProcessPlanner {
public:
    explicit CAudioProcessPlanner(CAudioGraphChanges& changes) : m_changes(changes) {}

    void make(CAudioLineSource& source, CAudioProcessBase& root, CAudioProcessPlan& plan);

private:
    /// A node that has something to do in each block.
    struct CStep {
        CAudioProcessBase* node = nullptr;
        CArray<std::size_t, 8> followers; ///< steps that wait for it, one entry a line
        std::size_t waitsFor = 0;
        bool isJoint = false;
    };
    /// Whose a sink is.
    struct COwner {
        CAudioProcessBase* node = nullptr;
        CAudioProcessComposite* inside = nullptr; ///< the sink is the output that this node offers to those inside it
        std::size_t step = kNone;
    };
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    void collect(CAudioProcessBase& node);
    [[nodiscard]] std::size_t addStep(CAudioProcessBase& node, bool isJoint);
    void routeSource(CAudioLineSource& source, std::size_t step);
    void follow(CAudioLineSource& source, int index, int firstIndex, CArray<CAudioLineRoute, 8>& routes);
    void followInto(CAudioProcessConnection& connection, int line, int firstIndex, CArray<CAudioLineRoute, 8>& routes);
    void order(CAudioProcessPlan& plan);
    /// Finds nodes that pay to be run beside a node that waits for them, in pieces.
    static void overlap(CAudioProcessPlan& plan);
    /// Whether a step gets all its lines from the other one, which feeds nothing else and has the same definition.
    [[nodiscard]] bool isInSeries(std::size_t step, std::size_t next) const;

    CAudioGraphChanges& m_changes;
    CArray<CStep> m_steps;
    CMap<const CAudioLineSink*, COwner> m_owners;
};

} // namespace qrb
