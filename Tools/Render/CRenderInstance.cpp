// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CRenderInstance.h"

#include "Audio/CAudioParam.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamConverter.h"
#include "Audio/HostParams/CAudioExtParam.h"
#include "Audio/HostParams/SpeakerNames.h"
#include "Tools/Render/Speakers.h"

#include <algorithm>

namespace render {

namespace {

constexpr const char* kPrefix = "plugin.modMain.";
constexpr int kMaxElements = 32; // what any parameter of the product can use

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

} // namespace

bool CRenderInstance::onExtParamEvent(const qrb::CExternalEvent& event)
{
    const std::size_t hostCount = extParams().size();
    const auto index = static_cast<std::size_t>(event.index);
    if (event.index < 0 || index < hostCount)
        return CAudioWrapper::onExtParamEvent(event);
    if (index - hostCount >= m_targets.size())
        return true;
    const CTarget& target = m_targets[index - hostCount];
    return target.param->trySetElement(target.group, target.element, event.value, this);
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
    if (!isRead) {
        error = "'" + setting.text + "' is no value of '" + setting.path + "'";
        return false;
    }
    out = {param, setting.group, setting.element, value};
    return true;
}

qrb::CAudioExtParam* CRenderInstance::findHostParam(const CSetting& setting)
{
    if (setting.group != 0 || setting.element != 0)
        return nullptr;
    const qrb::CString name = qrb::CString::fromUtf8(setting.path);
    const std::span<qrb::CAudioExtParam* const> params = extParams();
    const auto found =
        std::find_if(params.begin(), params.end(), [&](const auto* param) { return param->getName() == name; });
    return found != params.end() ? *found : nullptr;
}

bool CRenderInstance::readNormal(const CSetting& setting, const qrb::CAudioExtParam& param, double& out,
                                 std::string& error)
{
    const qrb::CString text = qrb::CString::fromUtf8(setting.text);
    const qrb::CAudioParamInfo& info = *param.param().info();
    bool isRead = false;
    static_cast<void>(info.components[0].converter->parseValue(info, 0, text, &isRead));
    out = param.parseNormal(text);
    if (!isRead)
        error = "'" + setting.text + "' is no value of '" + setting.path + "'";
    return isRead;
}

bool CRenderInstance::apply(const CSetting& setting, std::string& error)
{
    if (qrb::CAudioExtParam* const hostParam = findHostParam(setting)) {
        double normal = 0.0;
        if (!readNormal(setting, *hostParam, normal, error))
            return false;
        hostParam->setNormal(normal);
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
    return static_cast<int>(extParams().size() + m_targets.size()) - 1;
}

bool CRenderInstance::resolveEvent(const CSetting& setting, int& index, double& value, std::string& error)
{
    if (const qrb::CAudioExtParam* const hostParam = findHostParam(setting)) {
        index = hostParam->index();
        return readNormal(setting, *hostParam, value, error);
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
