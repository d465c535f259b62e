// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessGraph.h"

namespace qrb {

class CAudioProcessDef;
class CAudioProcessLinkDef;

/// Counts the links that a process's definition asks for under the states that hold. Touches no node: the counts before
/// and after tell what has to be connected and disconnected.
class CAudioProcessWiring {
public:
    CAudioProcessWiring(CAudioProcessGraph& graph, const CAudioProcessDef& definition)
        : m_graph(graph), m_definition(definition)
    {
    }

    void countLinks();

private:
    void markBypassed();
    void addAutoLinks();
    void addExplicitLinks();
    enum class EPass { intoNodeItems, intoOthers };
    void addExplicitLinks(const CArray<const CAudioProcessLinkDef*>& links, EPass pass);
    [[nodiscard]] bool isOn(const CAudioProcessLinkDef& link) const;
    void prune();

    /// A null source is the input of the process, a null destination its output.
    void addLink(CAudioProcessItem* source, int sourcePort, CAudioProcessItem* destination, int destinationPort);
    /// Links what reaches a node item, through other node items too, to the destination.
    void passThrough(CAudioProcessItem& nodeItem, CAudioProcessItem* destination, int destinationPort);
    /// Either of the two.
    void addOrPass(CAudioProcessItem* source, int sourcePort, CAudioProcessItem* destination, int destinationPort);

    CAudioProcessGraph& m_graph;
    const CAudioProcessDef& m_definition;
};

} // namespace qrb
