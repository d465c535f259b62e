// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CError.h"

namespace qrb {

class CInputStream;

/// Receiver of an interface client's messages about visualisation; a client has at most one. All calls come on the
/// client's thread. The streams stand behind the name of the message.
class CAudioInterfaceVizProcessor : public CCheckedObject {
public:
    virtual CErrorPtr onStartViz() = 0;
    virtual CErrorPtr onStopViz() = 0;
    virtual CErrorPtr onClearClient() = 0;
    /// "viz-data".
    virtual CErrorPtr onVizData(CInputStream& in) = 0;
    /// "export-slot-names".
    virtual CErrorPtr onExportSlotNames(CInputStream& in) = 0;
};

} // namespace qrb
