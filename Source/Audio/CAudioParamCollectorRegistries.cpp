// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamCollector.h"
#include "Audio/Presets/CAudioParamRegistry.h"

#include <utility>

namespace qrb {

void CAudioParamCollector::listNewParams(const CAudioParamPathEntry*& seen, CArray<CAudioParam*>& out) const
{
    CAudioParamPathEntry* const newest = m_params.newest();
    for (CAudioParamPathEntry* entry = newest; entry != nullptr && entry != seen;
         entry = CAudioParamPathTree::older(*entry))
        out.append(static_cast<CAudioParam*>(entry));
    seen = newest;
}

void CAudioParamCollector::addRegistry(CAudioParamRegistry& registry)
{
    m_registries.append(&registry);
}

void CAudioParamCollector::removeRegistry(CAudioParamRegistry& registry)
{
    const std::size_t place = m_registries.indexOf(&registry);
    if (place < m_registries.size())
        m_registries.removeAt(place);
}

CAudioParamRegistry* CAudioParamCollector::findRegistry(const CString& path) const
{
    for (CAudioParamRegistry* const registry : m_registries)
        if (registry->fullName() == path)
            return registry;
    return nullptr;
}

bool CAudioParamCollector::belongsTo(const CString& path, const CAudioParamRegistry& registry) const
{
    for (const CAudioParamRegistry* const other : m_registries)
        if (other->isEnumerated() && other->isAbove(path))
            return other == &registry;
    return !registry.isEnumerated() && registry.isAbove(path);
}

void CAudioParamCollector::completeRegistries()
{
    for (CAudioParamRegistry* const registry : m_registries)
        if (CErrorPtr error = registry->applyInitial())
            reportError(std::move(error));
}

void CAudioParamCollector::tellHandChange(const CAudioParam& param, std::int32_t group, const CAudioParamRoute& route)
{
    const CAudioParamGuard guard(*this);
    for (CAudioParamRegistry* const registry : m_registries)
        registry->onHandChange(param, group, route);
}

void CAudioParamCollector::selectPreset(const CAudioParam& param, const CAudioParamUpdate& record,
                                        const CAudioParamRoute& route)
{
    const CString& path = param.info()->registryPath;
    CAudioParamRegistry* const registry = path.empty() ? nullptr : findRegistry(path);
    if (registry != nullptr)
        registry->onSelector(record, route);
}

} // namespace qrb
