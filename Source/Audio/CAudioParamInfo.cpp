// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParamInfo.h"

#include "Audio/CAudioParamConverter.h"
#include "Core/CInputStream.h"
#include "Core/CObject.h"
#include "Core/COutputStream.h"
#include "Core/CProcessState.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qrb {

static constexpr std::int32_t kVersion = 1;
static constexpr std::int32_t kMaxStates = 4096;

double CAudioParamInfo::defaultValue(std::int32_t element, std::int32_t component) const
{
    const std::span<const double> cells = defaults.defaultElement(element);
    return static_cast<std::size_t>(component) < cells.size() ? cells[static_cast<std::size_t>(component)] : 0.0;
}

double CAudioParamInfo::clamped(std::int32_t component, double value) const
{
    const CComponent& bounds = components[static_cast<std::size_t>(component)];
    return std::clamp(value, std::min(bounds.min, bounds.max), std::max(bounds.min, bounds.max));
}

double CAudioParamInfo::finite(std::int32_t element, std::int32_t component, double value) const
{
    return std::isfinite(value) ? value : clamped(component, defaultValue(element, component));
}

CErrorPtr CAudioParamInfo::save(COutputStream& out) const
{
    for (const std::int32_t field :
         {kVersion, std::int32_t{isGlobal}, std::int32_t{isStorable}, std::int32_t{isPersistent}})
        QRB_TRY(out.writeInt32(field));
    QRB_TRY(out.writeString(visualName));
    QRB_TRY(out.writeString(definitionPath));
    QRB_TRY(out.writeString(registryPath));
    for (const std::int32_t field : {format.elementSize, static_cast<std::int32_t>(format.type),
                                     std::int32_t{format.isSingleGroup}, std::int32_t{format.isSingleElement}})
        QRB_TRY(out.writeInt32(field));
    for (const CComponent& component : components) {
        QRB_TRY(out.writeString(component.converterPath));
        QRB_TRY(out.writeDouble(component.min));
        QRB_TRY(out.writeDouble(component.max));
    }
    QRB_TRY(out.writeInt32(static_cast<std::int32_t>(longStateNames.size())));
    for (std::size_t i = 0; i < longStateNames.size(); ++i) {
        QRB_TRY(out.writeString(longStateNames[i]));
        QRB_TRY(out.writeString(shortStateNames[i]));
    }
    return defaults.save(out);
}

static CErrorPtr loadFlag(CInputStream& in, bool& flag)
{
    std::int32_t value = 0;
    QRB_TRY(in.readInt32(value));
    flag = value != 0;
    return {};
}

static CErrorPtr loadComponent(CInputStream& in, CAudioParamInfo::CComponent& component)
{
    QRB_TRY(in.readString(component.converterPath));
    QRB_TRY(in.readDouble(component.min));
    QRB_TRY(in.readDouble(component.max));
    if (!std::isfinite(component.min) || !std::isfinite(component.max))
        return QRB_ERROR("@qrbstr_CAudioParamInfo_load_Bounds Invalid bounds of a parameter.");
    const CObject* const shared = processState().sharedObject;
    component.converter = shared != nullptr
                              ? dynamic_cast<const CAudioParamConverter*>(shared->findObject(component.converterPath))
                              : nullptr;
    if (component.converter == nullptr)
        return QRB_ERROR("@qrbstr_CAudioParamInfo_load_Converter Audio parameter converter '%1' not found.",
                         component.converterPath);
    return {};
}

static CErrorPtr loadFormat(CInputStream& in, CAudioParamFormat& format)
{
    std::int32_t type = 0;
    QRB_TRY(in.readInt32(format.elementSize));
    QRB_TRY(in.readInt32(type));
    format.type = static_cast<EAudioParamType>(type);
    QRB_TRY(loadFlag(in, format.isSingleGroup));
    QRB_TRY(loadFlag(in, format.isSingleElement));
    if (!format.isValid())
        return QRB_ERROR("@qrbstr_CAudioParamInfo_load_ElementSize Invalid element size %1 specified.",
                         format.elementSize);
    return {};
}

CErrorPtr CAudioParamInfo::load(CInputStream& in)
{
    CAudioParamInfo loaded;
    std::int32_t version = 0;
    QRB_TRY(in.readInt32(version));
    if (version != kVersion)
        return QRB_ERROR("@qrbstr_CAudioParamInfo_load_Version Unsupported data set version %1.", version);
    QRB_TRY(loadFlag(in, loaded.isGlobal));
    QRB_TRY(loadFlag(in, loaded.isStorable));
    QRB_TRY(loadFlag(in, loaded.isPersistent));
    QRB_TRY(in.readString(loaded.visualName));
    QRB_TRY(in.readString(loaded.definitionPath));
    QRB_TRY(in.readString(loaded.registryPath));
    QRB_TRY(loadFormat(in, loaded.format));
    for (std::int32_t i = 0; i < loaded.format.elementSize; ++i)
        QRB_TRY(loadComponent(in, loaded.components.emplace()));
    std::int32_t states = 0;
    QRB_TRY(in.readInt32(states));
    if (states < 0 || states > kMaxStates)
        return QRB_ERROR("@qrbstr_CAudioParamInfo_load_States Invalid count of state names %1.", states);
    for (std::int32_t i = 0; i < states; ++i) {
        QRB_TRY(in.readString(loaded.longStateNames.emplace()));
        QRB_TRY(in.readString(loaded.shortStateNames.emplace()));
    }
    loaded.defaults.setFormat(loaded.format);
    QRB_TRY(loaded.defaults.load(in));
    for (std::int32_t group = 0; group < loaded.defaults.groupCount(); ++group)
        if (!std::ranges::all_of(loaded.defaults.cells(group), [](double v) { return std::isfinite(v); }))
            return QRB_ERROR("@qrbstr_CAudioParamInfo_load_Defaults Invalid default values of a parameter.");
    loaded.defaults.adoptDefaults();
    *this = std::move(loaded);
    return {};
}

} // namespace qrb
