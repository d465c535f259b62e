// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessBase.h"
#include "Core/CArray.h"

namespace qrb {

/// Base of nodes that decide which lines go on: a table of routes, made anew when lines or parameters change.
class CModRouting : public CAudioProcessBase {
public:
    void update() override;
    [[nodiscard]] const CAudioLine* passedLine(int outputLine) override;

protected:
    /// As a source: no line, but what makeSilence() gives.
    static constexpr int kSilence = -1;

    struct CRoute {
        int channel; ///< of the output line
        int group;
        int source; ///< index among the lines of `port`, or kSilence
        int port = 0;
    };

    /// Fills the table, one addRoute() for each output line.
    virtual void makeRoutes() = 0;

    /// Silent samples of this block, the same for all silent lines.
    [[nodiscard]] virtual CSampleBuffer makeSilence();

    void addRoute(const CRoute& route);
    [[nodiscard]] std::span<const CRoute> routes() const { return m_routes.span(); }

    /// Group at which a node for all groups reads its parameters.
    [[nodiscard]] int paramGroup() const { return groupIndex() < 0 ? 0 : groupIndex(); }
    [[nodiscard]] bool isOn(const CAudioParamSlot& slot, int element) const;

    /// Hands on by reference what the table says.
    void processLines() override;

private:
    void announceRoutes();

    CArray<CRoute, 16> m_routes;
};

} // namespace qrb
