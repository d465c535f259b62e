// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Filters/CAudioFilterGen.h"

namespace qrb {

class CAudioFilterSerialGenItem;

/// Designer of several filters in series, each from values that its item adjusts.
class CAudioFilterSerialGen : public CAudioFilterGen {
public:
    [[nodiscard]] CErrorPtr initChilds() override;
    void design(CAudioFilterStageList& list, double sampleRate, const CAudioFilterParams& params,
                CDCDAWFilterWorkspace* workspace) const override;

private:
    CArray<const CAudioFilterSerialGenItem*> m_items;
};

} // namespace qrb
