// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/QrbPreset/CProductParams.h"

#include "Audio/CAudioParamDef.h"
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Core/CApplication.h"
#include "Core/CProcessState.h"
#include "Core/CTextSplit.h"

#include <algorithm>

namespace qrbpreset {

bool CProductParams::load(std::string& error)
{
    qrb::CObject* root = nullptr;
    qrb::CErrorPtr failed = qrb::CApplication::initRootObject(root, {});
    if (!failed) {
        const qrb::CObject* const audio = qrb::processState().sharedObject->findObject("audio");
        qrb::CObject* plugin = nullptr;
        failed = root->createChild(plugin, audio != nullptr ? audio->getAttrString("plugin-tag") : qrb::CString(),
                                   "plugin", qrb::ERequireTemplate::yes);
        if (!failed)
            for (const qrb::CObject* const child : plugin->childs())
                if (const auto* const registry = dynamic_cast<const qrb::CAudioParamRegistry*>(child))
                    add(*registry);
    }
    if (root != nullptr)
        root->release();
    if (failed)
        error = "an instance cannot be built: " + failed->line(0).toUtf8();
    return !failed;
}

void CProductParams::add(const qrb::CAudioParamRegistry& registry)
{
    CRegistry entry;
    entry.id = registry.id().toUtf8();
    entry.naming = registry.getAttrString("preset-naming").toUtf8();
    entry.hierarchy = registry.getAttrString("hierarchy");
    if (!entry.hierarchy.endsWith("."))
        entry.hierarchy += ".";
    for (const qrb::CString& text : qrb::split(registry.getAttrString("def-name-remap"), ' ', qrb::EEmpty::drop)) {
        const std::size_t equals = text.find(u'=');
        if (equals != qrb::CString::npos)
            entry.remaps.emplace_back(text.substr(0, equals).trimmed(), text.substr(equals + 1).trimmed());
    }
    entry.isEnumerated = registry.isEnumerated();
    entry.isGlobalStorable = registry.getAttrBool("is-global-param-storable");
    m_registries.push_back(std::move(entry));
}

const CRegistry* CProductParams::registry(const std::string& id) const
{
    const auto found = std::find_if(m_registries.begin(), m_registries.end(),
                                    [&](const CRegistry& registry) { return registry.id == id; });
    return found != m_registries.end() ? &*found : nullptr;
}

const qrb::CAudioParamInfo* CProductParams::find(const CRegistry* registry, const std::string& key) const
{
    if (registry == nullptr)
        return nullptr;
    const qrb::CString path = registry->hierarchy + qrb::CString::fromUtf8(key);
    for (const auto& [from, to] : registry->remaps) {
        if (!path.startsWith(from))
            continue;
        const qrb::CString declared = to + path.substr(from.length());
        const qrb::CObject* const object = qrb::processState().sharedObject->findObject(declared);
        const auto* const definition = dynamic_cast<const qrb::CAudioParamDef*>(object);
        if (definition != nullptr && definition->info().definitionPath == declared && declared.toUtf8().ends_with(key))
            return &definition->info();
    }
    return nullptr;
}

bool CProductParams::isContent(const CRegistry& registry, const std::string& key,
                               const qrb::CAudioParamInfo& info) const
{
    const qrb::CString path = registry.hierarchy + qrb::CString::fromUtf8(key);
    // An enumerated owner has its parameters for itself.
    for (const CRegistry& other : m_registries)
        if (other.isEnumerated && &other != &registry && path.startsWith(other.hierarchy))
            return false;
    return info.isStorable || info.isPersistent || (registry.isGlobalStorable && info.isGlobal);
}

std::vector<CProductParams::CMember> CProductParams::members(const CRegistry& registry) const
{
    std::vector<CMember> found;
    const qrb::CString path = registry.hierarchy.substr(0, registry.hierarchy.length() - 1);
    for (const auto& [from, to] : registry.remaps) {
        const qrb::CString declared = to + path.substr(from.length());
        const qrb::CObject* const top =
            path.startsWith(from) ? qrb::processState().sharedObject->findObject(declared) : nullptr;
        if (top != nullptr)
            collect(*top, registry, declared + ".", found);
    }
    std::sort(found.begin(), found.end(), [](const CMember& a, const CMember& b) { return a.key < b.key; });
    return found;
}

void CProductParams::collect(const qrb::CObject& object, const CRegistry& registry, const qrb::CString& declaredRoot,
                             std::vector<CMember>& out) const
{
    for (const qrb::CObject* const child : object.childs()) {
        if (const auto* const definition = dynamic_cast<const qrb::CAudioParamDef*>(child)) {
            const qrb::CAudioParamInfo& info = definition->info();
            if (!info.definitionPath.startsWith(declaredRoot))
                continue;
            std::string key = info.definitionPath.substr(declaredRoot.length()).toUtf8();
            if (isContent(registry, key, info))
                out.push_back({std::move(key), &info});
        } else {
            collect(*child, registry, declaredRoot, out);
        }
    }
}

} // namespace qrbpreset
