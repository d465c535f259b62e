// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessComposite.h"

#include <cstdint>
#include <memory>

namespace qrb {

/// Node that stands for one chain of instances of its definition for each channel group (or each channel), each chain
/// as long as a parameter says. Chains come and go with the lines.
class CAudioProcessStack : public CAudioProcessComposite {
public:
    /// Longest chain.
    static constexpr int kMaxInstances = 32;

    CAudioProcessStack();
    ~CAudioProcessStack() override;

    [[nodiscard]] CErrorPtr init() override;
    void update() override;
    void disconnectAll() override;

protected:
    void processLines() override;

private:
    /// Instances in series, fed by the lines that belong to the chain.
    struct CChain : public CCheckedObject {
        int channel = -1; ///< -1: all channels of the group
        CAudioLineSource input;
        CArray<CAudioLineInfo> lines;
        CArray<CAudioLine*> slots; ///< input slot of each line
        CArray<std::unique_ptr<CAudioProcessBase>> instances;
        bool isUsed = false;
    };
    struct CAudioStackGroup : public CCheckedObject {
        int group = 0; ///< modulo 32
        CArray<std::unique_ptr<CChain>> chains;
    };

    void updateGroups();
    void assignLines(CAudioStackGroup& group);
    [[nodiscard]] CChain& findChain(CAudioStackGroup& group, int channel);
    void updateLengths();
    [[nodiscard]] int desiredLength(int group) const;
    void setLength(CAudioStackGroup& group, CChain& chain, int length);
    void rebuildSequence();

    CAudioBoundParam m_countParam;
    std::uint8_t m_countDirty = 0;
    bool m_isChannelStack = false;
    CArray<std::unique_ptr<CAudioStackGroup>> m_groups;
};

} // namespace qrb
