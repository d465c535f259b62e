// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParam.h"
#include "Core/CArray.h"
#include "Core/CCheckedObject.h"
#include "Core/CError.h"

#include <cstdint>
#include <span>

namespace qrb {

/// The change that sets a filter off, and how what the filter writes goes on.
struct CAudioParamFilterRun {
    const CAudioParamUpdate& record; ///< its values are not read: they are in place already
    const CAudioParamGuard& guard;
    const CAudioParamRoute& route;
};

/// Writes parameters that follow from others, whenever one of those changes. It works on what editors see, with the
/// parameters held, on the thread of the change: that may be the audio thread, so for elements that exist it allocates
/// nothing.
class CAudioParamFilter : public CCheckedObject {
public:
    static constexpr std::size_t kMaxParams = 9;
    using CParams = CArray<CAudioParam*, kMaxParams>;
    using CParamSpan = std::span<CAudioParam* const>;
    using CStorageSpan = std::span<const CAudioParamStorage* const>;

    CAudioParamFilter() = default;
    CAudioParamFilter(const CAudioParamFilter&) = delete;
    CAudioParamFilter& operator=(const CAudioParamFilter&) = delete;
    /// Leaves its sources. Parameters run filters with their lock held, so nothing runs in a filter that is half gone as
    /// long as its derived classes have nothing to destroy.
    ~CAudioParamFilter() override;

    /// Finds the parameters, relative to the process, joins its sources and runs for all that they hold. The collector
    /// outlives the filter. Nothing is joined on an error. Thread: any while no audio runs.
    [[nodiscard]] virtual CErrorPtr init(const CString& processPath, CAudioParamCollector& collector,
                                         std::span<const CString> sources, std::span<const CString> destinations);
    [[nodiscard]] virtual std::size_t getMinSrcCount() const = 0;
    [[nodiscard]] virtual std::size_t getMinDstCount() const = 0;

    /// Follows a change of one of the sources. Nothing happens while a parameter has no numbers yet, and where the filter
    /// itself brought the change about.
    void run(const CAudioParamFilterRun& run);

protected:
    /// By default computes each changed element and writes it to the same element of all destinations. All parameters
    /// have numbers, one a destination's element.
    virtual void update(CParamSpan sources, CParamSpan destinations, const CAudioParamFilterRun& run);
    /// Derives one element. `outValues` has one entry a destination and comes with the values that are there now.
    virtual void compute(CStorageSpan sources, std::int32_t group, std::int32_t element,
                         std::span<double> outValues) const;

    /// Replaces all of the changed group, or of `group`, by these elements.
    static void writeGroup(CAudioParam& destination, std::span<const double> values, const CAudioParamFilterRun& run);
    static void writeGroup(CAudioParam& destination, std::int32_t group, std::span<const double> values,
                           const CAudioParamFilterRun& run);

private:
    [[nodiscard]] bool canRun(const CAudioParamGuard& guard) const;
    /// What groups have may stand on the default elements that have just changed, in the first group too where the record
    /// does not say all of it.
    void updateDependents(const CAudioParamFilterRun& run);

    CAudioParamCollector* m_collector = nullptr;
    CParams m_sources;
    CParams m_destinations;
    bool m_isRunning = false; ///< guarded by the parameter lock
};

} // namespace qrb
