// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CRenderInstance.h"

#include "Audio/CAudioParam.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamConverter.h"
#include "Audio/HostParams/CAudioExtParam.h"
#include "Audio/HostParams/SpeakerNames.h"
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Tools/Render/CRenderPresets.h"
#include "Tools/Render/HostText.h"
#include "Tools/Render/Speakers.h"

#include <algorithm>

namespace render {

namespace {

constexpr const char* kPrefix = "plugin.modMain.";
constexpr const char* kProgramName = "Program"; // as hosts see it
constexpr int kMaxElements = 32;                // what any parameter of the product can use

std::string shown(const qrb::CAudioParamInfo& info, double value, const qrb::CAudioParamData* data)
{
    qrb::CString text;
    if (const qrb::CAudioParamConverter* converter = info.components[0].converter)
        converter->formatValue(text, info, 0, value, data, qrb::EValueStyle::normal);
    return text.toUtf8();
}

std::string shownElements(const qrb::CAudioParamInfo& info, const qrb::CAudioParamStorage& storage)
{
    std::string all;
    const std::span<const double> cells = storage.cells(0);
    for (std::size_t element = 0; element < cells.size(); ++element)
        all += (element > 0 ? "," : "") + shown(info, cells[element], &storage.data());
    return all;
}

bool refuse(const CSetting& setting, std::string& error)
{
    error = "'" + setting.text + "' is no value of '" + setting.path + "'";
    return false;
}

} // namespace

bool CRenderInstance::onExtParamEvent(const qrb::CExternalEvent& event)
{
    if (event.index < programIndex())
        return CAudioWrapper::onExtParamEvent(event);
    const auto place = static_cast<std::size_t>(event.index - programIndex());
    if (place == 0)
        m_programWish = event.value;
    if (place == 0 || place > m_targets.size())
        return true;
    const CTarget& target = m_targets[place - 1];
    return target.param->trySetElement(target.group, target.element, event.value, this);
}

void CRenderInstance::runOwner()
{
    std::string ignored;
    if (const double wish = m_programWish.exchange(-1.0); wish >= 0.0)
        static_cast<void>(selectProgram(wish, ignored));
    runIdle();
}

qrb::CAudioParam* CRenderInstance::findParam(const CSetting& setting, std::string& error)
{
    qrb::CAudioParam* param = paramCollector().findParam(qrb::CString::fromUtf8(kPrefix + setting.path));
    if (param == nullptr || !param->isBound()) {
        error = "there is no parameter '" + setting.path + "' (--list shows all)";
        return nullptr;
    }
    const qrb::CAudioParamFormat& format = param->info()->format;
    const int groups = format.isSingleGroup ? 1 : project().groupCount;
    const int elements = format.isSingleElement ? 1 : kMaxElements;
    if (setting.group >= groups)
        error = "'" + setting.path + "' has no group " + std::to_string(setting.group) + " (0 to " +
                std::to_string(groups - 1) + ")";
    else if (setting.element >= elements)
        error = "'" + setting.path + "' has no element " + std::to_string(setting.element) + " (0 to " +
                std::to_string(elements - 1) + ")";
    else
        return param;
    return nullptr;
}

bool CRenderInstance::resolve(const CSetting& setting, CTarget& out, std::string& error)
{
    qrb::CAudioParam* param = findParam(setting, error);
    if (param == nullptr)
        return false;
    const qrb::CAudioParamInfo& info = *param->info();
    if (info.format.type != qrb::EAudioParamType::number) {
        error = "'" + setting.path + "' holds no number and cannot change while audio runs";
        return false;
    }
    bool isRead = false;
    const double value =
        info.components[0].converter->parseValue(info, 0, qrb::CString::fromUtf8(setting.text), &isRead);
    if (!isRead)
        return refuse(setting, error);
    out = {param, setting.group, setting.element, value};
    return true;
}

std::vector<std::string> CRenderInstance::programNames()
{
    std::vector<std::string> names;
    const std::int32_t count = paramRegistry()->getProgramCount();
    names.reserve(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count; ++i)
        names.push_back(visibleName(paramRegistry()->getPresetName(i)));
    return names;
}

bool CRenderInstance::selectProgram(double normal, std::string& error)
{
    qrb::CAudioParamRegistry& registry = *paramRegistry();
    const std::size_t index = programOfNormal(normal, static_cast<std::size_t>(registry.getProgramCount()));
    if (const qrb::CErrorPtr failed = registry.setCurrentProgram(static_cast<std::int32_t>(index), nullptr))
        error = "the program cannot be used: " + failed->line(0).toUtf8();
    return error.empty();
}

std::optional<double> CRenderInstance::readNormal(const qrb::CAudioExtParam& param, const std::string& text)
{
    if (isNormalised(text))
        return parseNormalised(text);
    const qrb::CString own = qrb::CString::fromUtf8(text);
    const qrb::CAudioParamInfo& info = *param.param().info();
    bool isRead = false;
    static_cast<void>(info.components[0].converter->parseValue(info, 0, own, &isRead));
    return isRead ? std::optional(param.parseNormal(own)) : std::nullopt;
}

bool CRenderInstance::readHostSetting(const CSetting& setting, int& index, std::optional<double>& normal)
{
    if (setting.group != 0 || setting.element != 0)
        return false;
    if (setting.path == kProgramName) {
        index = programIndex();
        normal = parseProgram(programNames(), setting.text);
        return true;
    }
    const qrb::CString name = qrb::CString::fromUtf8(setting.path);
    const std::span<qrb::CAudioExtParam* const> params = extParams();
    const auto found =
        std::find_if(params.begin(), params.end(), [&](const auto* param) { return param->getName() == name; });
    if (found == params.end())
        return false;
    index = (*found)->index();
    normal = readNormal(**found, setting.text);
    return true;
}

bool CRenderInstance::apply(const CSetting& setting, std::string& error)
{
    int index = 0;
    std::optional<double> normal;
    if (readHostSetting(setting, index, normal)) {
        if (!normal)
            return refuse(setting, error);
        if (index == programIndex())
            return selectProgram(*normal, error);
        extParams()[static_cast<std::size_t>(index)]->setNormal(*normal);
        return true;
    }
    qrb::CAudioParam* param = findParam(setting, error);
    if (param == nullptr)
        return false;
    if (param->info()->format.type == qrb::EAudioParamType::text) {
        param->setString(setting.group, setting.element, qrb::CString::fromUtf8(setting.text), this);
        return true;
    }
    CTarget target;
    if (!resolve(setting, target, error))
        return false;
    target.param->setElement(target.group, target.element, target.value, this);
    return true;
}

int CRenderInstance::addTarget(const CTarget& target)
{
    m_targets.push_back(target);
    return programIndex() + static_cast<int>(m_targets.size()); // behind all that hosts see
}

bool CRenderInstance::resolveEvent(const CSetting& setting, int& index, double& value, std::string& error)
{
    std::optional<double> normal;
    if (readHostSetting(setting, index, normal)) {
        value = normal.value_or(0.0);
        return normal || refuse(setting, error);
    }
    CTarget target;
    if (!resolve(setting, target, error))
        return false;
    index = addTarget(target);
    value = target.value;
    return true;
}

void CRenderInstance::reportChannels(int channelCount, int keyCount)
{
    reportLayout(qrb::speakerNames(speakersOf(channelCount)), qrb::speakerNames(speakersOf(keyCount)));
}

std::vector<CFilePlayer::CParamText> CRenderInstance::listParams()
{
    qrb::CArray<qrb::CAudioParam*> params;
    paramCollector().listParams(params);
    const qrb::CAudioParamGuard guard(paramCollector());
    std::vector<CFilePlayer::CParamText> list;
    for (const qrb::CAudioParam* param : params) {
        if (!param->isBound() || !param->path().startsWith(kPrefix))
            continue;
        const qrb::CAudioParamInfo& info = *param->info();
        const qrb::CAudioParamStorage& values = param->editStorage(guard);
        CFilePlayer::CParamText text;
        text.path = param->path().toUtf8().substr(std::string(kPrefix).size());
        text.groups = values.groupCount();
        text.elements = values.elementCount(0);
        text.values = shownElements(info, values);
        text.defaults = shownElements(info, info.defaults);
        if (info.format.type == qrb::EAudioParamType::number) {
            text.min = shown(info, info.components[0].min, nullptr);
            text.max = shown(info, info.components[0].max, nullptr);
        }
        if (const qrb::CAudioParamConverter* converter = info.components[0].converter)
            text.unit = converter->label().toUtf8();
        list.push_back(std::move(text));
    }
    return list;
}

} // namespace render
