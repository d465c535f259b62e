// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Processes/CModDef.h"
#include "Audio/Processes/CModRouting.h"

namespace qrb {

/// Hands all lines on: a named point to link from.
class CModNode : public CModRouting {
protected:
    void makeRoutes() override;
};

class CModNodeDef : public CModDef<CModNode> {};

} // namespace qrb
