// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Render/CRenderInstance.h"

#include "Audio/CAudioParam.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamConverter.h"

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

bool names(const CSetting& setting, const char* path)
{
    return setting.path == path;
}

} // namespace

bool CRenderInstance::onExtParamEvent(const qrb::CExternalEvent& event)
{
    const auto index = static_cast<std::size_t>(event.index);
    if (event.index < 0 || index >= m_targets.size())
        return true;
    const CTarget& target = m_targets[index];
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

bool CRenderInstance::apply(const CSetting& setting, std::string& error)
{
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
    return static_cast<int>(m_targets.size()) - 1;
}

void CRenderInstance::routeChannels(int channelCount, const std::vector<CSetting>& settings)
{
    for (const char* path : {"io-params.in-routing", "io-params.out-routing"}) {
        const auto isTold = [&](const CSetting& setting) { return names(setting, path); };
        qrb::CAudioParam* param = paramCollector().findParam(qrb::CString(kPrefix) + path);
        if (param == nullptr || std::any_of(settings.begin(), settings.end(), isTold))
            continue;
        for (int channel = 0; channel < std::min(channelCount, project().internalChannelCount); ++channel)
            param->setElement(0, channel, channel + 1.0, this);
    }
}

std::vector<CRenderInstance::CParamText> CRenderInstance::listParams()
{
    qrb::CArray<qrb::CAudioParam*> params;
    paramCollector().listParams(params);
    const qrb::CAudioParamGuard guard(paramCollector());
    std::vector<CParamText> list;
    for (const qrb::CAudioParam* param : params) {
        if (!param->isBound() || !param->path().startsWith(kPrefix))
            continue;
        const qrb::CAudioParamInfo& info = *param->info();
        const qrb::CAudioParamStorage& values = param->editStorage(guard);
        CParamText text;
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
