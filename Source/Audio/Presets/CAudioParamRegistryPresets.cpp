// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamDef.h"
#include "Audio/CAudioPresetGuard.h"
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Audio/Presets/CAudioPresetRoute.h"
#include "Audio/Presets/CAudioRoutingInfoProvider.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/CNumberText.h"
#include "Core/CProcessState.h"
#include "Core/CWriteSeqBuffer.h"

#include <algorithm>
#include <utility>

namespace qrb {

void CAudioParamRegistry::enterParams()
{
    CArray<CAudioParam*> params;
    m_collector->listNewParams(m_newestSeen, params);
    for (CAudioParam* const param : params)
        if (m_collector->belongsTo(param->path(), *this))
            m_params.insert_or_assign(param->path().substr(m_hierarchy.length()), param);
}

CAudioParam* CAudioParamRegistry::findMember(const CString& key)
{
    enterParams();
    const auto known = m_params.find(key);
    return known != m_params.end() ? known->second : nullptr;
}

const CAudioParamInfo* CAudioParamRegistry::findDeclared(const CString& path) const
{
    const CObject* const shared = processState().sharedObject;
    for (const CPathRemap& remap : m_remaps) {
        if (shared == nullptr || !path.startsWith(remap.from))
            continue;
        const CString declared = remap.to + path.substr(remap.from.length());
        const auto* const definition = dynamic_cast<const CAudioParamDef*>(shared->findObject(declared));
        // Under its plain name only: detours in a path from outside would make parameters without end.
        if (definition != nullptr && definition->fullName() == declared)
            return &definition->info();
    }
    return nullptr;
}

bool CAudioParamRegistry::isContent(const CAudioParamInfo& info, bool withPersistent) const
{
    return info.isStorable || (withPersistent && info.isPersistent) || (m_isGlobalStorable && info.isGlobal);
}

CErrorPtr CAudioParamRegistry::checkItems(const CAudioPreset& preset, bool withPersistent, CArray<CCheckedItem>& items)
{
    for (const auto& [key, bytes] : preset.items) {
        const CString path = m_hierarchy + key;
        CAudioParam* param = findMember(key);
        const CAudioParamInfo* const info = param != nullptr && param->isBound() ? param->info() : findDeclared(path);
        // What is declared nowhere creates nothing.
        if (info == nullptr || !isContent(*info, withPersistent))
            continue;
        if (param == nullptr && m_collector->belongsTo(path, *this)) {
            (void)m_collector->getParam(path);
            param = findMember(key);
        }
        if (param == nullptr)
            continue;
        CCheckedItem item{param, info, {}};
        QRB_TRY(CAudioParam::readSaved(bytes.span(), *info, item.values));
        items.append(std::move(item));
    }
    return {};
}

CErrorPtr CAudioParamRegistry::checkId(const CAudioPreset& preset) const
{
    if (preset.registryId() != m_id)
        return QRB_ERROR("@qrbstr_CAudioParamRegistry_activatePreset_Incompatible Incompatible preset.");
    return {};
}

CErrorPtr CAudioParamRegistry::applyPreset(const CAudioPreset& preset, const CApplyPlace& to,
                                           const CAudioParamRoute& route)
{
    CArray<CCheckedItem> items;
    QRB_TRY(checkItems(preset, to.withPersistent, items));
    applyItems(items, to, route);
    return {};
}

void CAudioParamRegistry::applyItems(CArray<CCheckedItem>& items, const CApplyPlace& to,
                                     const CAudioParamRoute& callersRoute)
{
    const CAudioPresetRoute scope(*m_collector, callersRoute);
    const CAudioParamRoute& route = scope.route();
    CSet<const CAudioParam*> seen;
    for (CCheckedItem& item : items) {
        seen.insert(item.param);
        if (!item.param->isBound())
            item.param->bindInfo(*item.info, this, {route.deferredList, route.isImmediate});
        item.param->loadValues(std::move(item.values), to.place, this, route);
    }
    if (to.place.isReset)
        return;
    enterParams();
    for (const auto& [key, param] : m_params)
        if (param->isBound() && isContent(*param->info(), to.withPersistent) && seen.find(param) == seen.end())
            param->resetPlace(to.place, this, route);
    if (m_routingListener != nullptr)
        m_routingListener->applyDefaultRouting(route);
}

CAudioPreset CAudioParamRegistry::capture(std::int32_t group)
{
    const CAudioPresetGuard presetGuard(*m_collector);
    const CAudioParamGuard guard(*m_collector);
    CAudioPreset preset;
    const CAudioParam* const name = nameParam();
    if (m_isMaster)
        preset.name = m_session.at(m_current).name;
    else
        preset.name = CAudioPreset::joinName(m_id, name != nullptr ? name->text(std::max(group, 0), 0) : CString());
    enterParams();
    for (const auto& [key, param] : m_params)
        captureItem(preset, key, *param, group, guard);
    return preset;
}

void CAudioParamRegistry::captureItem(CAudioPreset& preset, const CString& key, const CAudioParam& param,
                                      std::int32_t group, const CAudioParamGuard& guard) const
{
    if (!param.isBound() || !isContent(*param.info(), true) ||
        (group >= 0 && param.editStorage(guard).cells(group).empty()))
        return;
    CWriteSeqBuffer out;
    if (CErrorPtr error = param.save(out, group))
        reportError(std::move(error)); // memory does not fail to take bytes
    out.getContiguous(preset.items[key]);
}

CErrorPtr CAudioParamRegistry::activatePreset(CInputStream& in, const void* source, std::int32_t group)
{
    CAudioPreset preset;
    QRB_TRY(preset.load(in));
    return activatePreset(preset, source, group);
}

CErrorPtr CAudioParamRegistry::activatePreset(const CAudioPreset& preset, const void* source, std::int32_t group)
{
    QRB_TRY(checkId(preset));
    if (source != nullptr && m_isMaster)
        return loadHostState(preset, source);
    // A group that no parameter can have is as good as one that none has.
    if (group >= kAudioParamMaxGroups)
        return {};
    return activateNamed(preset, activationLabel(group), group);
}

CString CAudioParamRegistry::activationLabel(std::int32_t group) const
{
    CString label = m_naming + " activate";
    if (group < 0)
        return label;
    const CAudioParam* const names = m_groupNamesPath.empty() ? nullptr : m_collector->findParam(m_groupNamesPath);
    label += " (";
    label += names != nullptr ? names->text(0, group) : formatInteger(group + 1);
    label += ")";
    return label;
}

CErrorPtr CAudioParamRegistry::acquirePreset(bool isFactory, std::int32_t index, std::int32_t group, COutputStream& out)
{
    if (!m_isMaster)
        return capture(group).save(out);
    CAudioPreset preset;
    {
        const CAudioParamGuard guard(*m_collector);
        const CAudioPresetBank& bank = isFactory ? m_factory : m_session;
        const std::int32_t wanted = !isFactory && index == -1 ? m_current : index;
        if (!bank.has(wanted))
            return QRB_ERROR("@qrbstr_CAudioParamRegistry_acquirePreset_Index Invalid preset index %1 specified.",
                             index);
        if (!isFactory && wanted == m_current)
            refreshCurrent();
        preset = bank.at(wanted);
    }
    return preset.save(out);
}

void CAudioParamRegistry::onSelector(const CAudioParamUpdate& record, const CAudioParamRoute& callersRoute)
{
    // A list that selects from itself ends here.
    if (m_choices == nullptr || m_isSelecting)
        return;
    m_isSelecting = true;
    const CAudioPresetGuard presetGuard(*m_collector);
    {
        const CAudioPresetRoute scope(*m_collector, callersRoute);
        const std::int32_t count = record.elementCount;
        const auto choice = [&record](std::int32_t element) {
            return roundToInt(record.values[static_cast<std::size_t>(element)]);
        };
        if (!m_isElementEnum && record.firstElement == 0) {
            select(count > 0 ? choice(0) : -1, {.group = record.group}, scope.route());
        } else if (m_isElementEnum && record.isToEnd && record.firstElement == 0 && count == 0) {
            select(-1, {.group = record.group}, scope.route());
        } else if (m_isElementEnum) {
            for (std::int32_t i = 0; i < count; ++i)
                select(choice(i),
                       {.group = record.group,
                        .element = record.firstElement + i,
                        .isToEnd = record.isToEnd && i == count - 1},
                       scope.route());
        }
    }
    m_isSelecting = false;
}

void CAudioParamRegistry::select(std::int32_t index, const CAudioParam::CLoadPlace& place,
                                 const CAudioParamRoute& route)
{
    static const CAudioPreset kNone;
    if (CErrorPtr error = applyPreset(m_choices->has(index) ? m_choices->at(index) : kNone, {.place = place}, route))
        reportError(std::move(error));
}

void CAudioParamRegistry::onHandChange(const CAudioParam& param, std::int32_t group, const CAudioParamRoute& route)
{
    CAudioParam* const name = m_isMaster || m_isEnumerated ? nullptr : nameParam();
    if (name == nullptr || name == &param || !param.isBound() || !m_collector->belongsTo(param.path(), *this) ||
        !isContent(*param.info(), false))
        return;
    const bool isFirst = name->info()->format.isSingleGroup || group < 0 || group == kAudioParamTemplateGroup;
    const std::int32_t nameGroup = isFirst ? 0 : group;
    if (name->text(nameGroup, 0) != kUserName)
        name->setString(nameGroup, 0, kUserName, this, route);
}

CAudioParam* CAudioParamRegistry::nameParam() const
{
    CAudioParam* const param = m_namePath.empty() ? nullptr : m_collector->findParam(m_namePath);
    const bool isName = param != nullptr && param->isBound() && param->info()->format.type == EAudioParamType::text;
    return isName ? param : nullptr;
}

bool CAudioParamRegistry::isRoutingPresetUsable(const CAudioPreset& preset, bool allowMidSide, bool allowSidechain)
{
    bool isReadable = true;
    const auto any = [&](const char* key, const auto& isUsed) {
        const auto item = preset.items.find(CString(key));
        if (item == preset.items.end())
            return false;
        CMemoryReaderStatic in(item->second.span());
        CString name;
        CAudioParamStorage values;
        if (in.readString(name) || values.load(in)) {
            isReadable = false;
            return false;
        }
        for (std::int32_t group = 0; group < values.groupCount(); ++group)
            for (std::size_t i = 0; i < values.cells(group).size(); ++i)
                if (isUsed(i, roundHalfAway(values.cells(group)[i])))
                    return true;
        return false;
    };
    const auto isSet = [](std::size_t, std::int64_t value) { return value != 0; };
    const auto isElsewhere = [](std::size_t i, std::int64_t value) { return value != static_cast<std::int64_t>(i); };
    const bool usesMidSide = any("ms-pairs", isSet);
    const bool usesSidechain = any("sidechain", isElsewhere) || any("sidechain-mute", isSet);
    return isReadable && (allowMidSide || !usesMidSide) && (allowSidechain || !usesSidechain);
}

} // namespace qrb
