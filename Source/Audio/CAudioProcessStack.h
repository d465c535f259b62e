// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessComposite.h"
#include "Audio/CAudioStackGroup.h"

#include <cstdint>
#include <memory>

namespace qrb {

/// Node that stands for one chain of instances of its definition for each channel group (or each channel), each chain
/// as long as a parameter says. Chains come and go with the lines of port 0.
class CAudioProcessStack : public CAudioProcessComposite {
public:
    /// Longest chain.
    static constexpr int kMaxInstances = 32;

    CAudioProcessStack();
    ~CAudioProcessStack() override;

    /// Name of the instance at a place of a chain.
    [[nodiscard]] static CString instanceName(const CString& stack, int element);

    [[nodiscard]] CErrorPtr init() override;
    void update() override;
    void disconnectAll() override;

    [[nodiscard]] std::span<const std::unique_ptr<CAudioStackGroup>> groups() const { return m_groups.span(); }

protected:
    void bindParams() override;
    [[nodiscard]] CArray<CAudioLineSource*, 8> innerSources() override;
    [[nodiscard]] CInnerLine innerLine(const CAudioLine& line) override;
    void sendInner() override;

private:
    void updateGroups();
    void assignLines(CAudioStackGroup& group);
    void updateLengths();
    [[nodiscard]] int desiredLength(int group) const;
    void setLength(int group, CAudioStackChain& chain, int length);
    [[nodiscard]] std::unique_ptr<CAudioProcessBase> makeInstance(int group, int element);
    void rebuildSequence();

    CAudioBoundParam m_countParam;
    std::uint8_t m_countDirty = 0;
    CArray<std::unique_ptr<CAudioStackGroup>> m_groups; ///< in ascending order
};

} // namespace qrb
