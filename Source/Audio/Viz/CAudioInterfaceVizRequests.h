// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CString.h"

#include <cstdint>

namespace qrb {

class CAudioInterfaceVizProcessor;

/// What an interface client does for visualisation: each call sends the message of its name. A message that fails is
/// the client's to report. Thread: the client's.
class CAudioInterfaceVizRequests : public CCheckedObject {
public:
    /// Asks for the records of a source and gives the id of the request. `kind` -1: of the own instance; 0 or more: as
    /// they come through that export slot.
    virtual std::int32_t listenViz(std::int32_t kind, const CString& name) = 0;
    virtual void unlistenViz(std::int32_t id) = 0;
    /// Asks for what has come since the last time. `time`: the client's clock in seconds.
    virtual void requestVizData(double time) = 0;
    virtual void requestExportSlotNames() = 0;
    /// Who gets the answers, not owned; null for nobody.
    virtual void setVizProcessor(CAudioInterfaceVizProcessor* processor) = 0;
};

} // namespace qrb
