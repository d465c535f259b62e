// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Monitor/Client/CParamView.h"

#include "Audio/CAudioParamConverter.h"
#include "Audio/CAudioParamUpdate.h"
#include "Audio/Interface/CAudioInterfaceClient.h"

#include <algorithm>
#include <cmath>

namespace monitor {

using qrb::CString;

CParamView::CParamView(qrb::CAudioInterfaceClient& client, const std::string& path, int steps)
    : m_client(client), m_steps(steps)
{
    m_id = m_client.listenParam(CString::fromUtf8("plugin.modMain." + path), *this);
}

CParamView::~CParamView()
{
    m_client.unlistenParam(m_id);
}

std::string CParamView::text(int group, int element) const
{
    if (!isKnown())
        return {};
    const int atGroup = groupOf(group);
    const int atElement = elementOf(element);
    if (m_info.format.type == qrb::EAudioParamType::text)
        return m_values.text(atGroup, atElement).toUtf8();
    const qrb::CAudioParamConverter* const converter = m_info.components[0].converter;
    if (converter == nullptr)
        return {};
    CString text;
    converter->formatValue(text, m_info, 0, m_values.value(atGroup, atElement), &m_values.data(),
                           qrb::EValueStyle::normal);
    return (converter->label().empty() ? text : text + " " + converter->label()).toUtf8();
}

double CParamView::moved(double value, int steps) const
{
    const qrb::CAudioParamConverter* const converter = m_info.components[0].converter;
    if (converter == nullptr || converter->isDiscrete() || m_steps == 0)
        return m_info.clamped(0, std::round(value) + steps);
    // Onto a grid, so that there and back is the same value.
    const double place = std::round(converter->toNormal(m_info, 0, value) * m_steps) + steps;
    return converter->fromNormal(m_info, 0, std::clamp(place / m_steps, 0.0, 1.0));
}

void CParamView::move(int group, int element, int steps, const std::string& gesture, std::int32_t tag)
{
    if (!isKnown())
        return;
    const double before = m_values.value(groupOf(group), elementOf(element));
    const double after = moved(before, steps);
    if (after == before)
        return;
    const std::int32_t undo = m_client.createUndoData(CString::fromUtf8(gesture), tag >= 0, tag);
    change(group, element, after, undo);
    m_client.submitUndoData(undo, {});
}

void CParamView::reset(int group, int element, const std::string& gesture)
{
    if (!isKnown())
        return;
    const std::int32_t undo = m_client.createUndoData(CString::fromUtf8(gesture), false, -1);
    m_client.resetParam(m_id, groupOf(group), elementOf(element), undo, false);
    m_client.submitUndoData(undo, {});
}

void CParamView::change(int group, int element, double value, std::int32_t gesture)
{
    if (!isKnown())
        return;
    qrb::CAudioParamUpdate update;
    update.format = m_info.format;
    update.group = groupOf(group);
    update.firstElement = elementOf(element);
    update.elementCount = 1;
    update.values = &value;
    m_client.changeParam(m_id, update, gesture);
}

qrb::CErrorPtr CParamView::onParamInfo(qrb::CInputStream& in)
{
    if (qrb::CErrorPtr error = m_info.load(in))
        return error;
    if (m_values.format() != m_info.format)
        m_values.setFormat(m_info.format);
    return {};
}

qrb::CErrorPtr CParamView::onParamValue(const qrb::CAudioParamUpdate& update)
{
    m_values.apply(update);
    return {};
}

} // namespace monitor
