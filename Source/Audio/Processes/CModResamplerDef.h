// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessDefBase.h"

namespace qrb {

/// Definition of a resampler. What its stages are made of stands elsewhere, under names of its own.
class CModResamplerDef : public CAudioProcessDefBase {
public:
    /// Most doublings of the rate.
    static constexpr int kMaxStages = 3;

    /// The definitions that stages are made of.
    struct CParts {
        const CAudioProcessDefBase* rateChanger = nullptr;
        const CAudioProcessDefBase* steepFilter = nullptr; ///< next to the host's rate
        const CAudioProcessDefBase* softFilter = nullptr;  ///< of all other stages
    };

    [[nodiscard]] CErrorPtr init() override;
    [[nodiscard]] std::unique_ptr<CAudioProcessBase> createProcess() const override;
    void visitInner(const std::function<void(const CAudioInnerProcess&)>& visit) const override;

    [[nodiscard]] bool isUpsampler() const { return m_isUpsampler; }
    [[nodiscard]] CErrorPtr findParts(CParts& out) const;
    /// Names of a stage's nodes, below the resampler.
    [[nodiscard]] CString rateChangerName(int stage) const;
    [[nodiscard]] CString filterName(int stage) const;

private:
    bool m_isUpsampler = false;
};

} // namespace qrb
