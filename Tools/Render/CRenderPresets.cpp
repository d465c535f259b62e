// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CRenderPresets.h"

#include "Audio/CAudioWrapper.h"
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Audio/Presets/CAudioPresetList.h"
#include "Core/CWriteSeqBuffer.h"
#include "Tools/Product/BoundedFile.h"
#include "Tools/Product/CPresetFile.h"
#include "Tools/Render/HostText.h"

#include <algorithm>
#include <utility>

namespace render {

namespace {

/// Place of the name in the list: as a whole, as users see it, as users see it in whatever case; -1 if it is not there.
std::int32_t findPreset(const std::vector<qrb::CString>& names, const std::string& name)
{
    const qrb::CString wanted = qrb::CString::fromUtf8(name);
    if (const auto found = std::find(names.begin(), names.end(), wanted); found != names.end())
        return static_cast<std::int32_t>(found - names.begin());
    std::vector<std::string> visible;
    visible.reserve(names.size());
    for (const qrb::CString& whole : names)
        visible.push_back(visibleName(whole));
    const std::optional<std::size_t> index = findName(visible, name);
    return index ? static_cast<std::int32_t>(*index) : -1;
}

std::vector<qrb::CString> namesOf(const std::vector<qrb::CAudioPreset>& presets)
{
    std::vector<qrb::CString> names;
    names.reserve(presets.size());
    for (const qrb::CAudioPreset& preset : presets)
        names.push_back(preset.name);
    return names;
}

std::vector<qrb::CString> programNames(const qrb::CAudioParamRegistry& master, std::int32_t& current)
{
    qrb::CArray<qrb::CString> names;
    master.getPresetNames(false, names, current);
    return {names.begin(), names.end()};
}

qrb::CAudioParamRegistry* findRegistry(qrb::CAudioWrapper& instance, const qrb::CString& id)
{
    qrb::CObject* const plugin = instance.root().findObject("plugin");
    if (plugin == nullptr)
        return nullptr;
    for (qrb::CObject* const child : plugin->childs())
        if (auto* const registry = dynamic_cast<qrb::CAudioParamRegistry*>(child);
            registry != nullptr && registry->id() == id)
            return registry;
    return nullptr;
}

qrb::CAudioPreset toPreset(const product::CPreset& from)
{
    qrb::CAudioPreset preset;
    preset.name = qrb::CString::fromUtf8(from.name);
    for (const product::CItem& item : from.items) {
        qrb::CByteArray bytes;
        bytes.appendAll({reinterpret_cast<const std::uint8_t*>(item.bytes.data()), item.bytes.size()});
        preset.items.insert_or_assign(qrb::CString::fromUtf8(item.key), std::move(bytes));
    }
    return preset;
}

} // namespace

std::string visibleName(const qrb::CString& whole)
{
    qrb::CAudioPreset preset;
    preset.name = whole;
    return preset.visibleName().toUtf8();
}

bool CRenderPresets::readFile(const std::string& path, std::vector<qrb::CAudioPreset>& out, std::string& error)
{
    std::string bytes;
    error = product::readBoundedFile(path, product::kMaxFileBytes, bytes);
    if (!error.empty())
        return false;
    product::CPresetFile file;
    if (!product::readPresetFile(bytes, file, error)) {
        error = "'" + path + "': " + error;
        return false;
    }
    for (const product::CBank& bank : file.banks)
        for (const product::CPreset& preset : bank.presets)
            out.push_back(toPreset(preset));
    if (!out.empty())
        return true;
    error = "'" + path + "' holds no preset";
    return false;
}

bool CRenderPresets::readFiles(std::string& error)
{
    if (!m_options.bankFile.empty() && !readFile(m_options.bankFile, m_bank, error))
        return false;
    for (const std::string& path : m_options.presetFiles) {
        std::vector<qrb::CAudioPreset> presets;
        if (!readFile(path, presets, error))
            return false;
        if (presets.size() > 1) {
            error =
                "'" + path + "' holds " + std::to_string(presets.size()) + " presets; --bank and --preset choose one";
            return false;
        }
        m_files.push_back(std::move(presets.front()));
    }
    return true;
}

bool CRenderPresets::activate(qrb::CAudioWrapper& instance, std::string& error)
{
    const bool isDone = m_options.bankFile.empty() ? !m_options.presetName || activateBuiltIn(instance, error)
                                                   : activateOfBank(instance, error);
    for (std::size_t i = 0; isDone && i < m_files.size(); ++i)
        if (!activateOne(instance, m_files[i], m_options.presetFiles[i], error))
            return false;
    return isDone;
}

bool CRenderPresets::activateBuiltIn(qrb::CAudioWrapper& instance, std::string& error)
{
    qrb::CAudioParamRegistry* const master = instance.paramRegistry();
    std::int32_t current = 0;
    const std::int32_t index =
        master != nullptr ? findPreset(programNames(*master, current), *m_options.presetName) : -1;
    if (index < 0)
        error = "there is no preset '" + *m_options.presetName + "' (--presets shows all)";
    else if (const qrb::CErrorPtr failed = master->setCurrentProgram(index, nullptr))
        error = "the preset '" + *m_options.presetName + "' cannot be used: " + failed->line(0).toUtf8();
    return error.empty();
}

bool CRenderPresets::activateOfBank(qrb::CAudioWrapper& instance, std::string& error)
{
    const std::int32_t index = m_options.presetName ? findPreset(namesOf(m_bank), *m_options.presetName) : 0;
    if (index >= 0)
        return activateOne(instance, m_bank[static_cast<std::size_t>(index)], m_options.bankFile, error);
    error = "there is no preset '" + *m_options.presetName + "' in '" + m_options.bankFile + "' (--presets shows all)";
    return false;
}

bool CRenderPresets::activateOne(qrb::CAudioWrapper& instance, const qrb::CAudioPreset& preset, const std::string& from,
                                 std::string& error)
{
    qrb::CAudioParamRegistry* const registry = findRegistry(instance, preset.registryId());
    const std::string name = "'" + preset.name.toUtf8() + "' of '" + from + "'";
    if (registry == nullptr)
        error = "nothing in the product takes the preset " + name;
    else if (const qrb::CErrorPtr failed = registry->activatePreset(preset, nullptr, -1))
        error = "the preset " + name + " cannot be used: " + failed->line(0).toUtf8();
    return error.empty();
}

std::vector<CFilePlayer::CPresetText> CRenderPresets::list(qrb::CAudioWrapper& instance) const
{
    std::int32_t current = -1;
    std::vector<qrb::CString> names = namesOf(m_bank);
    if (m_options.bankFile.empty() && instance.paramRegistry() != nullptr)
        names = programNames(*instance.paramRegistry(), current);
    std::vector<CFilePlayer::CPresetText> texts;
    for (const qrb::CString& name : names) {
        qrb::CAudioPreset preset;
        preset.name = name;
        texts.push_back(
            {visibleName(name), preset.registryId().toUtf8(), static_cast<std::size_t>(current) == texts.size()});
    }
    return texts;
}

bool CRenderPresets::take(qrb::CAudioWrapper& instance, std::string& bytes, std::string& error)
{
    qrb::CAudioParamRegistry* const master = instance.paramRegistry();
    if (master == nullptr) {
        error = "the product has no presets";
        return false;
    }
    qrb::CWriteSeqBuffer content;
    qrb::CWriteSeqBuffer chunk;
    qrb::CByteArray whole;
    qrb::CErrorPtr failed = master->acquirePreset(false, -1, -1, content);
    content.getContiguous(whole);
    if (!failed)
        failed = chunk.writeCompressedData(whole.span(), qrb::kPresetChunk);
    chunk.getContiguous(whole);
    bytes.assign(whole.begin(), whole.end());
    if (failed)
        error = "the preset cannot be saved: " + failed->line(0).toUtf8();
    return !failed;
}

} // namespace render
