// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/HostParams/CAudioExtParam.h"

#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamConverter.h"
#include "Audio/CAudioParamUpdateInfo.h"
#include "Audio/HostParams/CAudioExtParamHostBridge.h"

#include <algorithm>
#include <cmath>

namespace qrb {

namespace {

constexpr double kUnboundNormal = 0.5;

const CAudioParamConverter& converterOf(const CAudioParamInfo& info)
{
    return *info.components[0].converter;
}

} // namespace

void CAudioExtParam::declare(CObjectClassInfo& info)
{
    CObject::declare(info);
}

CAudioExtParam::~CAudioExtParam()
{
    m_listener.detach();
}

CErrorPtr CAudioExtParam::init()
{
    QRB_TRY(CObject::init());
    CAudioParamCollector* collector = nullptr;
    QRB_TRY(findObjectByAttr("param-collector", collector));
    m_name = getAttrString("ext-name");
    if (m_name.empty() || m_name.length() > kMaxNameLength)
        return QRB_ERROR("@qrbstr_CAudioExtParam_init_NameTooLong Externalized parameter name '%1' is too long",
                         m_name);
    m_element = getAttrInt("element-index");
    m_group = getAttrInt("group");
    if (m_element < 0 || m_element >= kAudioParamMaxElements || m_group < 0 || m_group >= kAudioParamMaxGroups)
        return QRB_ERROR("@qrbstr_CAudioExtParam_init_Place Invalid place of externalized parameter '%1' (group %2, "
                         "element %3).",
                         m_name, m_group, m_element);
    m_param = &collector->getParam(getAttrString("param-name"));
    const CAudioParamGuard guard(*collector);
    m_listener.attach(collector, CAudioParamCollector::listenerKey(*m_param));
    m_lastNormal = readNormal(guard);
    return {};
}

void CAudioExtParam::unlink()
{
    setBridge(nullptr, m_index);
    m_listener.detach();
    CObject::unlink();
}

void CAudioExtParam::setBridge(CAudioExtParamHostBridge* bridge, std::int32_t index)
{
    if (m_param == nullptr)
        return;
    const CAudioParamGuard guard(m_param->collector());
    if (m_bridge != nullptr && bridge == nullptr)
        m_param->collector().cancelDeferred(*m_bridge);
    m_bridge = bridge;
    m_index = index;
}

double CAudioExtParam::takeNormal(const CAudioParamInfo& info, double value)
{
    m_lastNormal = value;
    return converterOf(info).fromNormal(info, 0, value);
}

void CAudioExtParam::setNormal(double value)
{
    const CAudioParamGuard guard(m_param->collector());
    if (!std::isfinite(value) || value == m_lastNormal)
        return;
    const CAudioParamInfo* const info = m_param->info();
    if (info == nullptr) {
        m_lastNormal = value;
        return;
    }
    // A gap in front of an element that does not exist yet is filled by the parameter, with its default elements.
    m_param->setElement(m_group, m_element, takeNormal(*info, std::clamp(value, 0.0, 1.0)), this);
}

bool CAudioExtParam::trySetNormal(double value)
{
    const CAudioParamGuard guard(m_param->collector(), EAudioParamWait::tryOnly);
    if (!guard.isHeld())
        return false;
    if (!std::isfinite(value) || value == m_lastNormal)
        return true;
    const CAudioParamInfo* const info = m_param->info();
    if (info == nullptr) {
        m_lastNormal = value;
        return true;
    }
    return m_param->trySetElement(m_group, m_element, takeNormal(*info, std::clamp(value, 0.0, 1.0)), this);
}

double CAudioExtParam::getNormal() const
{
    const CAudioParamGuard guard(m_param->collector());
    return m_lastNormal;
}

double CAudioExtParam::getDefaultNormal() const
{
    const CAudioParamInfo* const info = m_param->info();
    return info != nullptr ? converterOf(*info).toNormal(*info, 0, info->defaultValue(m_element, 0)) : kUnboundNormal;
}

CString CAudioExtParam::getUnits() const
{
    const CAudioParamInfo* const info = m_param->info();
    return info != nullptr ? converterOf(*info).label() : CString();
}

CString CAudioExtParam::formatNormal(double value) const
{
    CString text;
    if (const CAudioParamInfo* const info = m_param->info()) {
        const CAudioParamConverter& converter = converterOf(*info);
        converter.formatValue(text, *info, 0, converter.fromNormal(*info, 0, value), nullptr, EValueStyle::normal);
    }
    return text;
}

double CAudioExtParam::parseNormal(const CString& text) const
{
    const CAudioParamInfo* const info = m_param->info();
    if (info == nullptr)
        return kUnboundNormal;
    bool isRead = false;
    const double value = converterOf(*info).parseValue(*info, 0, text, &isRead);
    return isRead ? converterOf(*info).toNormal(*info, 0, value) : getDefaultNormal();
}

bool CAudioExtParam::isMeant(const CAudioParamUpdate& update) const
{
    if (update.isTemplate())
        return true;
    const bool isGroup = update.format.isSingleGroup || update.group == m_group;
    const bool isElement = update.firstElement <= m_element && (update.isToEnd || m_element < update.endElement());
    return update.source != this && isGroup && isElement;
}

double CAudioExtParam::readNormal(const CAudioParamGuard& guard) const
{
    const CAudioParamInfo* const info = m_param->info();
    if (info == nullptr || info->format.hasItems())
        return 0.0;
    return converterOf(*info).toNormal(*info, 0, m_param->editStorage(guard).value(m_group, m_element));
}

void CAudioExtParam::CListener::onUpdate(const CUpdateInfo& info)
{
    owner().onParamUpdate(static_cast<const CAudioParamUpdateInfo&>(info).update);
}

void CAudioExtParam::onParamUpdate(const CAudioParamUpdate& update)
{
    if (!isMeant(update))
        return;
    const CAudioParamGuard guard(m_param->collector());
    const double normal = readNormal(guard);
    if (normal == m_lastNormal)
        return;
    m_lastNormal = normal;
    if (m_bridge != nullptr)
        m_param->collector().deferLatest(*m_bridge, m_index, normal, guard);
}

} // namespace qrb
