// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Processes/CModDef.h"

namespace qrb {

/// Doubles the sample rate by zeros between the samples; a filter behind it takes the images away.
class CModInterpolator : public CAudioProcessBase {
public:
    CModInterpolator() { output().setStuffing(true); }

    void update() override;

protected:
    void processLines() override;

private:
    CArray<CAudioLineInfo, 4> m_announced;
};

class CModInterpolatorDef : public CModDef<CModInterpolator> {};

} // namespace qrb
