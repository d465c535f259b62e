// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessBase.h"
#include "Core/CArray.h"
#include "Core/CCheckedObject.h"
#include "Core/CString.h"

#include <memory>

namespace qrb {

class CAudioProcessItem;

/// A link into an item or into the output of the process, counted anew at each rebuild.
struct CAudioProcessLink {
    CAudioProcessItem* source = nullptr; ///< null: the input of the process
    int sourcePort = 0;
    int destinationPort = 0;
    int newCount = 0;
    int oldCount = 0;
};

/// The links of one destination.
class CAudioProcessLinkList {
public:
    /// Counts a link, entering it if there is no equal one.
    void add(CAudioProcessItem* source, int sourcePort, int destinationPort);
    /// Makes the new counts the old ones.
    void beginRebuild();
    void clearNewCounts();
    /// The same for links from items that the input does not reach.
    void clearUnreached();
    /// Drops links that do not count, once what they stood for is disconnected.
    void dropUnused();
    [[nodiscard]] bool hasNewLinks() const;
    [[nodiscard]] CArray<CAudioProcessLink>& links() { return m_links; }
    [[nodiscard]] const CArray<CAudioProcessLink>& links() const { return m_links; }

private:
    CArray<CAudioProcessLink> m_links;
};

/// A declared child of a process: its definition, the links into it, and its node while a link reaches it.
class CAudioProcessItem : public CCheckedObject {
public:
    CString name;
    const CAudioProcessDefBase* definition = nullptr;
    int index = 0; ///< order of declaration
    bool isEnabled = true;
    bool isNode = false; ///< only names a point of the chain; never made into a node
    bool isBypassed = false;
    std::unique_ptr<CAudioProcessBase> node;
    int useCount = 0; ///< ends of connected links
    CAudioProcessLinkList links;

    // Scratch of the passes over the graph.
    bool isReached = false;
    bool isVisited = false;
    bool isPlaced = false;

    [[nodiscard]] bool isLive() const { return isEnabled && !isBypassed; }
};

} // namespace qrb
