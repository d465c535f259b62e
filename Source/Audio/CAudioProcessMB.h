// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioBandRec.h"
#include "Audio/CAudioProcessComposite.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace qrb {

struct CAudioInnerProcess;

/// The definitions of a crossover's filters; null where the multiband definition names none.
struct CAudioBandFilterDefs {
    const CAudioProcessDefBase* lowPass = nullptr;
    const CAudioProcessDefBase* highPass = nullptr;
    const CAudioProcessDefBase* pre = nullptr;
};

/// Node that splits its input into bands and runs its definition once for each. All input ports are split alike, so
/// that what a band gets as its key or as its dry signal has gone through the same filters as its audio.
///
/// With a high-pass definition the splits are a cascade:
///
///     input -+- LP(0) - PRE(0) - body(0)
///            +- HP(0) -+- LP(1) - PRE(1) - body(1)
///                      +- HP(1) - body(2)
///
/// without one every band but a lone one takes the input through a low-pass of its own. Filters of split `b` read their
/// parameters at element `b`. What comes out is the bands' lines side by side; the consumer sums and aligns them.
class CAudioProcessMB : public CAudioProcessComposite {
public:
    static constexpr int kMaxBands = 32;

    using FVisit = std::function<void(const CAudioInnerProcess&, EExpansion)>;

    CAudioProcessMB();
    ~CAudioProcessMB() override;

    [[nodiscard]] CErrorPtr init() override;
    void update() override;
    void disconnectAll() override;

    [[nodiscard]] std::span<const std::unique_ptr<CAudioBandRec>> bands() const { return m_bands.span(); }

    /// The bodies and filters that nodes of a multiband definition instantiate, under the names their parameters have.
    static void visitParts(const CAudioProcessDefBase& definition, const FVisit& visit);

protected:
    void bindParams() override;

private:
    [[nodiscard]] int findBandCount() const;
    void updatePorts();
    void setBandCount(int count);
    [[nodiscard]] std::unique_ptr<CAudioBandRec> makeBand(int index);
    void connectPort(int band, int port);
    void disconnectPort(int band, int port);
    [[nodiscard]] CAudioBandPort makeFilters(int band, int port);
    [[nodiscard]] std::unique_ptr<CAudioProcessBase> makeFilter(const CAudioProcessDefBase* filterDefinition,
                                                                const char* name, int band, int port);
    [[nodiscard]] bool isLast(int band) const { return band + 1 == static_cast<int>(m_bands.size()); }
    void rebuildSequence();

    CAudioBandFilterDefs m_filters;
    CAudioBoundParam m_countParam;
    CAudioBoundParam m_freqParam;
    std::uint8_t m_splitsDirty = 1;
    CArray<std::unique_ptr<CAudioBandRec>> m_bands;
    CArray<int, 4> m_ports; ///< input ports that have lines, ascending
};

} // namespace qrb
