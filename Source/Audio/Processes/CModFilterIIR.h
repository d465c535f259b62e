// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessTerminal.h"
#include "Audio/Filters/CAudioFilterParams.h"
#include "Audio/Filters/CFilterBank.h"
#include "Audio/Processes/CModDef.h"

namespace qrb {

class CAudioFilterGen;
class CAudioFilterGenArray;

/// Recursive filter by a designer of an array. The parameter at index 0 picks the designer; the others are handed to
/// it under the names of their allocations.
///
/// New values of a running filter fade inside its stages. A change of designer starts from rest and relies on the
/// crossfade of the node. Where the design has no stage the signal passes, by reference. A node that `is-terminal-whole`
/// runs its lines side by side; they then share the parameters of its group.
class CModFilterIIRModule : public CAudioModule {
public:
    void regParams() override;
    void start() override;
    void reset() override;
    void update() override;
    void process() override;
    [[nodiscard]] bool canRunInSeries() const override { return true; }
    [[nodiscard]] bool processInSeries(std::span<CAudioModule* const> modules) override;
    [[nodiscard]] bool canRunTogether() const override { return !m_bank.empty(); }
    void processTogether(std::span<CAudioModule* const> modules) override;
    [[nodiscard]] bool takesForm(ESampleForm form) const override;

private:
    [[nodiscard]] bool canRunWith(const CModFilterIIRModule& other) const;
    struct CNamedParam {
        CAudioParamSlot slot;
        std::size_t place = 0; ///< of its value in m_params
    };

    /// The bank's signals of samples at odd places, which it may leave out while nobody hears them.
    enum class EOdd { kept, leftOut, begun };

    [[nodiscard]] bool isComplete() const;
    [[nodiscard]] bool pickDesigner();
    [[nodiscard]] bool takeValues();
    void redesign();
    [[nodiscard]] bool isThinned();

    CAudioParamSlot m_indexSlot;
    CArray<CNamedParam, 4> m_named;
    const CAudioFilterGenArray* m_array = nullptr;
    const CAudioFilterGen* m_designer = nullptr;
    int m_index = 0;
    CAudioFilterParams m_params; ///< the values the running stages were designed with
    CAudioFilterStageList m_design;
    CFilterBank m_bank;
    CArray<CSampleBuffer, 2> m_taken; ///< while a block runs: its inputs in the form that suits all lines
    CArray<const double*, 2> m_inputs;
    CArray<double*, 2> m_buffers;
    bool m_isRebuildDue = true;
    EOdd m_odd = EOdd::kept;
};

class CModFilterIIR : public CAudioProcessTerminal<CModFilterIIRModule> {};

class CModFilterIIRDef : public CModDef<CModFilterIIR> {};

} // namespace qrb
