// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/ParamFilters/CAudioParamFilter.h"

#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamPath.h"

#include <algorithm>
#include <array>

namespace qrb {

namespace {

/// Room for what one change usually brings, all destinations together.
constexpr std::size_t kUsualValues = 32;

void addParams(CAudioParamFilter::CParams& params, CAudioParamCollector& collector, const CString& processPath,
               std::span<const CString> paths)
{
    for (const CString& path : paths)
        params.append(&collector.getParam(resolveParamPath(processPath, path)));
}

/// How many elements of a change are to be computed: a change that ends a group reaches to the end of the longest source.
std::int32_t changedCount(CAudioParamFilter::CStorageSpan sources, const CAudioParamUpdate& record)
{
    std::int32_t end = record.endElement();
    if (record.isToEnd)
        for (const CAudioParamStorage* const source : sources)
            end = std::max(end, source->elementCount(record.storageGroup()));
    return end - record.firstElement;
}

} // namespace

CAudioParamFilter::~CAudioParamFilter()
{
    if (m_collector == nullptr)
        return;
    const CAudioParamGuard guard(*m_collector);
    for (CAudioParam* const source : m_sources)
        source->detachFilter(*this, guard);
}

CErrorPtr CAudioParamFilter::init(const CString& processPath, CAudioParamCollector& collector,
                                  std::span<const CString> sources, std::span<const CString> destinations)
{
    if (sources.size() < getMinSrcCount())
        return QRB_ERROR("@qrbstr_CAudioParamFilter_init_FewSrc Not enough source parameters %1 defined in the param "
                         "filter (required %2).",
                         sources.size(), getMinSrcCount());
    if (sources.size() > kMaxParams)
        return QRB_ERROR("@qrbstr_CAudioParamFilter_init_ManySrc Too many source parameters %1 defined in the param "
                         "filter.",
                         sources.size());
    if (destinations.size() < getMinDstCount())
        return QRB_ERROR("@qrbstr_CAudioParamFilter_init_FewDst Not enough destination parameters %1 defined in the "
                         "param filter (required %2).",
                         destinations.size(), getMinDstCount());
    if (destinations.size() > kMaxParams)
        return QRB_ERROR("@qrbstr_CAudioParamFilter_init_ManyDst Too many destination parameters %1 defined in the "
                         "param filter.",
                         destinations.size());
    m_collector = &collector;
    addParams(m_sources, collector, processPath, sources);
    addParams(m_destinations, collector, processPath, destinations);
    const CAudioParamGuard guard(collector);
    // At once, as the defaults that this goes out from.
    for (CAudioParam* const source : m_sources)
        source->attachFilter(*this, guard, {nullptr, true});
    return {};
}

bool CAudioParamFilter::canRun(const CAudioParamGuard& guard) const
{
    const auto isReady = [&guard](const CAudioParam* param) {
        const CAudioParamStorage& storage = param->editStorage(guard);
        return storage.hasData() && !storage.format().hasItems();
    };
    const auto isSimple = [&guard](const CAudioParam* param) {
        return param->editStorage(guard).format().elementSize == 1;
    };
    return std::ranges::all_of(m_sources.span(), isReady) && std::ranges::all_of(m_destinations.span(), isReady) &&
           std::ranges::all_of(m_destinations.span(), isSimple);
}

void CAudioParamFilter::run(const CAudioParamFilterRun& run)
{
    // Parameters that are declared to follow each other settle after one round.
    if (m_isRunning || !canRun(run.guard))
        return;
    m_isRunning = true;
    update(m_sources.span(), m_destinations.span(), run);
    if (run.record.isTemplate())
        updateDependents(run);
    m_isRunning = false;
}

void CAudioParamFilter::updateDependents(const CAudioParamFilterRun& run)
{
    std::int32_t groupCount = 0;
    for (const CAudioParam* const destination : m_destinations)
        groupCount = std::max(groupCount, destination->editStorage(run.guard).groupCount());
    for (std::int32_t group = run.record.isToEnd ? 1 : 0; group < groupCount; ++group) {
        CAudioParamUpdate record = run.record;
        record.group = group;
        record.firstElement = 0;
        record.elementCount = 0;
        record.isToEnd = false;
        for (const CAudioParam* const destination : m_destinations)
            record.elementCount =
                std::max(record.elementCount, destination->editStorage(run.guard).elementCount(group));
        if (record.elementCount > 0)
            update(m_sources.span(), m_destinations.span(), {record, run.guard, run.route});
    }
}

void CAudioParamFilter::update(CParamSpan sources, CParamSpan destinations, const CAudioParamFilterRun& run)
{
    std::array<const CAudioParamStorage*, kMaxParams> storages{};
    std::ranges::transform(sources, storages.begin(),
                           [&run](const CAudioParam* source) { return &source->editStorage(run.guard); });
    const CStorageSpan from(storages.data(), sources.size());
    const std::int32_t group = run.record.storageGroup();
    CAudioParamUpdate record = run.record;
    record.elementCount = changedCount(from, run.record);
    record.data = nullptr;
    const std::size_t count = static_cast<std::size_t>(record.elementCount);
    CArray<double, kUsualValues> values;
    values.resize(destinations.size() * count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::int32_t element = record.firstElement + static_cast<std::int32_t>(i);
        std::array<double, kMaxParams> results{};
        std::ranges::transform(destinations, results.begin(), [&](const CAudioParam* destination) {
            return destination->editStorage(run.guard).value(group, element);
        });
        compute(from, group, element, std::span(results).first(destinations.size()));
        for (std::size_t d = 0; d < destinations.size(); ++d)
            values[d * count + i] = results[d];
    }
    for (std::size_t d = 0; d < destinations.size(); ++d) {
        record.format = destinations[d]->editStorage(run.guard).format();
        record.values = values.data() + d * count;
        destinations[d]->update(record, run.guard, run.route);
    }
}

void CAudioParamFilter::compute(CStorageSpan /*sources*/, std::int32_t /*group*/, std::int32_t /*element*/,
                                std::span<double> /*outValues*/) const
{
}

void CAudioParamFilter::writeGroup(CAudioParam& destination, std::span<const double> values,
                                   const CAudioParamFilterRun& run)
{
    writeGroup(destination, run.record.group, values, run);
}

void CAudioParamFilter::writeGroup(CAudioParam& destination, std::int32_t group, std::span<const double> values,
                                   const CAudioParamFilterRun& run)
{
    CAudioParamUpdate record;
    record.group = group;
    record.elementCount = static_cast<std::int32_t>(values.size());
    record.isToEnd = true;
    record.source = run.record.source;
    record.format = destination.editStorage(run.guard).format();
    record.values = values.data();
    destination.update(record, run.guard, run.route);
}

} // namespace qrb
