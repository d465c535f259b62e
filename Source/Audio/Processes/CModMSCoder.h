// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Processes/CModDef.h"
#include "Audio/Processes/CModRouting.h"

namespace qrb {

/// Codes pairs of channels to mid and side, or back.
///
/// Channels with one pair number make a pair, the lower channel first, in encoder and decoder alike: so decoding undoes
/// encoding in whatever order the lines come. Channels without partner pass.
class CModMSCoder : public CModRouting {
public:
    [[nodiscard]] CErrorPtr init() override;
    [[nodiscard]] const CAudioLine* passedLine(int outputLine) override
    {
        return m_pairs.empty() ? CModRouting::passedLine(outputLine) : nullptr;
    }

protected:
    void makeRoutes() override;
    void processLines() override;

private:
    struct CPair {
        int number;
        int first;       ///< index of the line with the lower channel
        int second = -1; ///< -1: still alone
    };

    void findPairs();
    void processPair(const CPair& pair);

    CAudioParamSlot m_pairsSlot;
    CAudioParamSlot m_modeSlot;
    CAudioParamSlot m_bypassSlot;
    CArray<CPair, 8> m_pairs;
    bool m_isDecoder = false;
};

class CModMSCoderDef : public CModDef<CModMSCoder> {};

} // namespace qrb
