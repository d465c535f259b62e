// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioProcessTerminal.h"
#include "Audio/Filters/CAudioFilterParams.h"
#include "Audio/Filters/CFilterFIR.h"
#include "Audio/Filters/CPhasedFIR.h"
#include "Audio/Processes/CModDef.h"

namespace qrb {

class CAudioFilterGenArray;
class CAudioFilterStageList;

/// Finite response by a designer of an array, told by allocations of these names:
///     count      elements to design, 1 unless bound
///     index      designer of an element
///     latency    log2 of the smallest block, by which the output is late; 7 unless bound
///     fixsr      whether an element is designed at 44100 Hz, whatever the real rate is
///     points, points2, points3    lists of values for the designer, behind the named ones
/// All other allocations are values of an element, handed to its designer by name.
///
/// With the attribute `is-zero-latency` the first taps run directly and the output is not late; only the design's own
/// latency counts. New values make a new filter, which starts as if its first sample had always been: a node relies on
/// its crossfade. Where the design is not exactly one finite stage the signal passes, by reference.
///
/// Beside a rate changer the samples at even and at odd places run apart, so that zeros and what nobody hears cost nothing.
class CModFilterFIRModule : public CAudioModule {
public:
    void regParams() override;
    void start() override;
    void reset() override;
    void update() override;
    void process() override;
    [[nodiscard]] bool takesForm(ESampleForm form) const override;

private:
    static constexpr std::size_t kPointLists = 3;

    /// What one element is designed from.
    struct CElement {
        int index = 0;
        bool isFixedRate = false;
        CArray<double, 4> values;

        friend bool operator==(const CElement&, const CElement&) = default;
    };
    /// All that the filter depends on.
    struct CRequest {
        double sampleRate = 0.0;
        int log2Block = 0;
        CArray<CElement, 1> elements;
        CArray<double, 1> points[kPointLists];

        friend bool operator==(const CRequest&, const CRequest&) = default;
    };
    struct CNamedParam {
        CAudioParamSlot slot;
        CString name;
    };

    [[nodiscard]] CAudioParamSlot* specialSlot(const CString& name);
    [[nodiscard]] bool isComplete() const;
    [[nodiscard]] CRequest readRequest() const;
    void build();
    void design(CAudioFilterStageList& list, const CElement& element) const;
    void setTaps(std::span<const double> taps);
    [[nodiscard]] bool canPhase() const;
    /// Whether the lines run in phases from now on; makes what that needs.
    [[nodiscard]] bool isPhased();
    void runPhased(int index);

    CAudioParamSlot m_count;
    CAudioParamSlot m_index;
    CAudioParamSlot m_log2Block;
    CAudioParamSlot m_fixedRate;
    CAudioParamSlot m_points[kPointLists];
    CArray<CNamedParam, 4> m_named;
    const CAudioFilterGenArray* m_array = nullptr;
    bool m_isZeroLatency = false;
    CRequest m_request;
    CArray<double> m_taps;
    CArray<CFilterFIR, 1> m_filters; ///< one a line
    CArray<CPhasedFIR, 1> m_phased;  ///< empty as long as no rate changer is beside
};

class CModFilterFIR : public CAudioProcessTerminal<CModFilterFIRModule> {};

class CModFilterFIRDef : public CModDef<CModFilterFIR> {};

} // namespace qrb
