// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioPresetGuard.h"
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Audio/Presets/CAudioParamUndo.h"
#include "Audio/Presets/CAudioPresetRoute.h"
#include "Audio/Presets/CAudioRoutingInfoProvider.h"
#include "Core/CInputStream.h"
#include "Core/COutputStream.h"

#include <utility>

namespace qrb {

using platform::CScopedLock;

CErrorPtr CAudioParamRegistry::activateNamed(const CAudioPreset& preset, const CString& label, std::int32_t group)
{
    {
        const CAudioPresetGuard presetGuard(*m_collector);
        const CAudioParamGuard guard(*m_collector);
        CArray<CCheckedItem> items;
        QRB_TRY(checkItems(preset, false, items));
        auto entry = m_undo != nullptr ? std::make_unique<CAudioParamUndoEntry>(label) : nullptr;
        {
            const CAudioPresetRoute scope(*m_collector, {.undo = entry.get()});
            applyItems(items, {.place = {.group = group}}, scope.route());
            setName(preset.name, group, scope.route());
        }
        if (m_undo != nullptr)
            m_undo->submit(std::move(entry));
    }
    if (m_isMaster)
        tellListeners(nullptr);
    return {};
}

CErrorPtr CAudioParamRegistry::loadHostState(const CAudioPreset& preset, const void* source)
{
    {
        const CAudioPresetGuard presetGuard(*m_collector);
        const CAudioParamGuard guard(*m_collector);
        CArray<CCheckedItem> items;
        QRB_TRY(checkItems(preset, true, items));
        {
            const CScopedLock lock(m_bankLock);
            m_current = 0;
            for (std::int32_t i = m_session.count() - 1; i >= 0; --i)
                if (m_session.at(i).name == preset.name)
                    m_current = i;
        }
        {
            const CAudioPresetRoute scope(*m_collector, {});
            applyItems(items, {.withPersistent = true}, scope.route());
            setName(preset.name, -1, scope.route());
        }
        forgetHistories();
    }
    tellListeners(source);
    return {};
}

void CAudioParamRegistry::forgetHistories()
{
    if (m_undo != nullptr)
        m_undo->clearHistory();
    for (auto& history : m_histories)
        history.reset();
    m_shadowHistory.reset();
    const CScopedLock lock(m_bankLock);
    m_shadow.reset();
}

CErrorPtr CAudioParamRegistry::activateFactoryPreset(std::int32_t index)
{
    // The built-in presets do not change once the instance is there.
    if (!m_isMaster || !m_factory.has(index))
        return {};
    return activateNamed(m_factory.at(index), "ROM preset activate", -1);
}

CErrorPtr CAudioParamRegistry::setCurrentProgram(std::int32_t index, const void* source)
{
    if (!m_isMaster)
        return {};
    {
        const CAudioPresetGuard presetGuard(*m_collector);
        const CAudioParamGuard guard(*m_collector);
        if (!m_session.has(index) || index == m_current)
            return {};
        const CAudioPreset next = m_session.at(index);
        CArray<CCheckedItem> items;
        QRB_TRY(checkItems(next, false, items));
        refreshCurrent();
        if (m_undo != nullptr) {
            auto history = m_undo->swapHistory(std::move(m_histories[static_cast<std::size_t>(index)]));
            m_histories[static_cast<std::size_t>(m_current)] = std::move(history);
        }
        {
            const CScopedLock lock(m_bankLock);
            m_current = index;
        }
        const CAudioPresetRoute scope(*m_collector, {});
        applyItems(items, {}, scope.route());
        setNameParam(next.name, 0, source, scope.route());
    }
    tellListeners(source);
    return {};
}

void CAudioParamRegistry::renamePreset(std::int32_t index, const CString& name, const void* source)
{
    if (!m_isMaster)
        return;
    const CString whole = CAudioPreset::joinName(m_id, name);
    {
        const CAudioParamGuard guard(*m_collector);
        if (!m_session.has(index))
            return;
        if (index == m_current) {
            auto entry = std::make_unique<CAudioParamUndoEntry>("Program name change");
            setName(whole, 0, {.undo = entry.get()});
            if (m_undo != nullptr)
                m_undo->submit(std::move(entry));
        } else {
            (void)setSessionName(index, whole);
        }
    }
    tellListeners(source);
}

void CAudioParamRegistry::setName(const CString& name, std::int32_t group, const CAudioParamRoute& route)
{
    if (m_isMaster)
        (void)setSessionName(m_current, name);
    setNameParam(name, group, this, route);
}

void CAudioParamRegistry::setNameParam(const CString& name, std::int32_t group, const void* source,
                                       const CAudioParamRoute& route)
{
    CAudioParam* const param = nameParam();
    if (param == nullptr)
        return;
    CAudioPreset named;
    named.name = name;
    const bool isFirst = group < 0 || param->info()->format.isSingleGroup;
    param->setString(isFirst ? 0 : group, 0, named.visibleName(), source, route);
}

bool CAudioParamRegistry::setSessionName(std::int32_t index, const CString& name)
{
    const CScopedLock lock(m_bankLock);
    CAudioPreset& preset = m_session.at(index);
    if (preset.name == name)
        return false;
    preset.name = name;
    return true;
}

void CAudioParamRegistry::onNameParam(const CString& visibleName)
{
    if (setSessionName(m_current, CAudioPreset::joinName(m_id, visibleName)))
        tellListeners(this);
}

void CAudioParamRegistry::refreshCurrent()
{
    CAudioPreset now = capture(-1);
    const CScopedLock lock(m_bankLock);
    m_session.at(m_current) = std::move(now);
}

void CAudioParamRegistry::spreadPersistent()
{
    const CScopedLock lock(m_bankLock);
    for (const auto& [key, param] : m_params) {
        const auto item = m_session.at(m_current).items.find(key);
        if (!param->isBound() || !param->info()->isPersistent || item == m_session.at(m_current).items.end())
            continue;
        for (CAudioPreset& preset : m_session.presets)
            if (&preset != &m_session.at(m_current))
                preset.items[key] = item->second;
    }
}

CErrorPtr CAudioParamRegistry::acquireBank(bool isFactory, COutputStream& out)
{
    if (!m_isMaster)
        return QRB_ERROR("@qrbstr_CAudioParamRegistry_acquireBank_NoMaster Acquiring bank in a non-master registry is "
                         "an error.");
    if (isFactory)
        return m_factory.save(out);
    CAudioPresetBank bank;
    {
        const CAudioParamGuard guard(*m_collector);
        refreshCurrent();
        spreadPersistent();
        bank = m_session;
    }
    return bank.save(out);
}

CErrorPtr CAudioParamRegistry::setDefaultPreset(CInputStream& in)
{
    if (!m_isMaster)
        return {};
    CAudioPreset preset;
    QRB_TRY(preset.load(in));
    return setDefaultPreset(preset);
}

CErrorPtr CAudioParamRegistry::setDefaultPreset(const CAudioPreset& preset)
{
    if (!m_isMaster)
        return {};
    QRB_TRY(checkId(preset));
    const CAudioPresetGuard presetGuard(*m_collector);
    const CAudioParamGuard guard(*m_collector);
    return applyPreset(preset, {.place = {.isReset = true}, .withPersistent = true}, {});
}

void CAudioParamRegistry::getPresetNames(bool isFactory, CArray<CString>& outNames, std::int32_t& outCurrent) const
{
    outNames.clear();
    outCurrent = -1;
    const CScopedLock lock(m_bankLock);
    for (const CAudioPreset& preset : (isFactory ? m_factory : m_session).presets)
        outNames.append(preset.name);
    if (m_isMaster && !isFactory)
        outCurrent = m_current;
}

CString CAudioParamRegistry::getPresetName(std::int32_t index) const
{
    const CScopedLock lock(m_bankLock);
    return m_session.has(index) ? m_session.at(index).name : CString();
}

std::int32_t CAudioParamRegistry::getProgramCount() const
{
    return std::max(1, m_factory.count());
}

std::int32_t CAudioParamRegistry::getCurrentProgram() const
{
    const CScopedLock lock(m_bankLock);
    return m_current;
}

void CAudioParamRegistry::masterReset()
{
    if (!m_isMaster)
        return;
    const CAudioPresetGuard presetGuard(*m_collector);
    const CAudioParamGuard guard(*m_collector);
    enterParams();
    auto entry = m_undo != nullptr ? std::make_unique<CAudioParamUndoEntry>("Master reset") : nullptr;
    {
        const CAudioPresetRoute scope(*m_collector, {.undo = entry.get()});
        CAudioParam* const name = nameParam();
        for (const auto& [key, param] : m_params)
            if (param != name && param->isBound() && param->info()->isStorable)
                param->resetPlace({}, this, scope.route());
        // From nobody, so that the program's name follows.
        if (name != nullptr)
            name->resetPlace({}, nullptr, scope.route());
        if (m_routingListener != nullptr)
            m_routingListener->applyDefaultRouting(scope.route());
    }
    if (m_undo != nullptr)
        m_undo->submit(std::move(entry));
}

void CAudioParamRegistry::updateShadowPreset()
{
    if (!m_isMaster)
        return;
    const CAudioPresetGuard presetGuard(*m_collector);
    const CAudioParamGuard guard(*m_collector);
    makeShadow();
}

void CAudioParamRegistry::makeShadow()
{
    auto now = std::make_unique<CAudioPreset>(capture(-1));
    auto history = m_undo != nullptr ? m_undo->copyHistory() : nullptr;
    const CScopedLock lock(m_bankLock);
    m_shadow = std::move(now);
    m_shadowHistory = std::move(history);
}

CErrorPtr CAudioParamRegistry::exchangeShadowPreset()
{
    if (!m_isMaster)
        return {};
    {
        const CAudioPresetGuard presetGuard(*m_collector);
        const CAudioParamGuard guard(*m_collector);
        if (m_shadow == nullptr)
            makeShadow();
        CArray<CCheckedItem> items;
        QRB_TRY(checkItems(*m_shadow, false, items));
        CAudioPreset now = capture(-1);
        {
            const CAudioPresetRoute scope(*m_collector, {});
            applyItems(items, {}, scope.route());
            setName(m_shadow->name, -1, scope.route());
        }
        if (m_undo != nullptr)
            m_shadowHistory = m_undo->swapHistory(std::move(m_shadowHistory));
        const CScopedLock lock(m_bankLock);
        *m_shadow = std::move(now);
    }
    tellListeners(nullptr);
    return {};
}

} // namespace qrb
