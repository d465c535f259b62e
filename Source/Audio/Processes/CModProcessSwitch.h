// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessComposite.h"

#include <memory>

namespace qrb {

class CModProcessSwitchDef;

/// Node that stands for one of several definitions, picked by a parameter, or for a series of copies of it. Without
/// any the signal passes. A change of the pick or of the number of copies builds the series anew, from rest.
class CModProcessSwitch : public CAudioProcessComposite {
public:
    /// Most copies in series.
    static constexpr int kMaxCopies = 32;

    explicit CModProcessSwitch(const CModProcessSwitchDef& definition) : m_switchDef(definition) {}

    [[nodiscard]] CErrorPtr init() override;
    void update() override;
    void disconnectAll() override;

private:
    void rebuild(int number, int count);

    const CModProcessSwitchDef& m_switchDef;
    CAudioParamSlot m_indexSlot;
    CAudioParamSlot m_countSlot;
    CArray<std::unique_ptr<CAudioProcessBase>, 2> m_copies;
    int m_index = 0;
    int m_count = 0;
    bool m_isBuilt = false;
};

} // namespace qrb
