// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Processes/CModDef.h"
#include "Audio/Processes/CModRouting.h"

namespace qrb {

/// Host channels to internal channels and groups, or internal channels to host channels.
///
/// The input router gives each internal channel the first host channel that asks for it; the output router may send one
/// internal channel to several host channels. Without any route one silent line keeps the chain behind it running.
class CModRouter : public CModRouting {
public:
    [[nodiscard]] CErrorPtr init() override;

protected:
    void makeRoutes() override;

private:
    void makeInputRoutes();
    void makeOutputRoutes();
    [[nodiscard]] int routingOf(int channel) const;
    [[nodiscard]] int groupOf(int channel) const;
    [[nodiscard]] bool hasRouteTo(int channel) const;

    CAudioParamSlot m_routingSlot;
    CAudioParamSlot m_groupingSlot;
};

class CModRouterDef : public CModDef<CModRouter> {
public:
    [[nodiscard]] CErrorPtr init() override;

    [[nodiscard]] bool isOutput() const { return m_isOutput; }

private:
    bool m_isOutput = false;
};
} // namespace qrb
