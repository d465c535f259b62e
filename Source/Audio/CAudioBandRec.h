// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessBase.h"
#include "Core/CArray.h"
#include "Core/CCheckedObject.h"

#include <memory>

namespace qrb {

/// The filters through which the lines of one input port reach a band, each serving all channels. Null where the band
/// has no such filter.
struct CAudioBandPort {
    int port = 0;
    std::unique_ptr<CAudioProcessBase> lowPass;
    std::unique_ptr<CAudioProcessBase> highPass;
    std::unique_ptr<CAudioProcessBase> pre;
};

/// What a multiband node keeps for one band.
class CAudioBandRec : public CCheckedObject {
public:
    /// The filters of an input port; null where it is not connected.
    [[nodiscard]] CAudioBandPort* findPort(int port)
    {
        for (CAudioBandPort& entry : ports) {
            if (entry.port == port) {
                return &entry;
            }
        }
        return nullptr;
    }

    int index = 0;
    std::unique_ptr<CAudioProcessBase> body; ///< null if it could not be made; the band is silent then
    CArray<CAudioBandPort, 3> ports;         ///< those that are connected, ascending
};

} // namespace qrb
