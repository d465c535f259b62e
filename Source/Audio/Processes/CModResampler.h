// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessComposite.h"
#include "Audio/Processes/CModResamplerDef.h"

#include <memory>

namespace qrb {

/// Multiplies the sample rate, or divides it again, by a power of two that parameters tell. Each doubling has a stage of
/// its own, a rate changer and a filter; the stage that meets the host's rate was the first and is the last to go.
/// Without a doubling the signal passes, by reference.
class CModResampler : public CAudioProcessComposite {
public:
    explicit CModResampler(const CModResamplerDef& definition) : m_resamplerDef(definition) {}

    [[nodiscard]] CErrorPtr init() override;
    void update() override;
    void disconnectAll() override;

private:
    /// One doubling; the signal meets `first` before `second`.
    struct CStage {
        std::unique_ptr<CAudioProcessBase> first;
        std::unique_ptr<CAudioProcessBase> second;
    };

    [[nodiscard]] int findStageCount() const;
    void setStageCount(int count);
    [[nodiscard]] bool addStage();
    /// Where a new stage takes the signal from: an upsampler grows behind its stages, a downsampler in front of them.
    [[nodiscard]] CAudioLineSource& openSource();
    [[nodiscard]] CAudioLineSink& openSink();
    void rebuildSequence();

    const CModResamplerDef& m_resamplerDef;
    CModResamplerDef::CParts m_parts;
    CAudioParamSlot m_modeSlot;
    CAudioParamSlot m_hostModeSlot;
    CArray<CStage, CModResamplerDef::kMaxStages> m_stages; ///< from the host's rate up
};

} // namespace qrb
