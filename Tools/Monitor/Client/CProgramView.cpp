// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/Monitor/Client/CProgramView.h"

#include "Audio/Interface/CAudioInterfaceClient.h"
#include "Audio/Presets/CAudioPreset.h"

namespace monitor {

CProgramView::CProgramView(qrb::CAudioInterfaceClient& client) : m_client(client)
{
    m_id = m_client.listenRegistry("plugin.param-registry", *this);
}

CProgramView::~CProgramView()
{
    m_client.unlistenRegistry(m_id);
}

void CProgramView::step(int count)
{
    const int size = static_cast<int>(m_names.size());
    if (size > 0)
        m_client.setCurrentProgram(m_id, ((m_current + count) % size + size) % size);
}

void CProgramView::swap()
{
    m_client.exchangeShadowPreset(m_id);
}

void CProgramView::putAside()
{
    m_client.updateShadowPreset(m_id);
}

void CProgramView::reset()
{
    m_client.activateDefaultPreset(m_id);
}

qrb::CErrorPtr CProgramView::onConnected()
{
    return {};
}

qrb::CErrorPtr CProgramView::onRegistryUpdate(bool isFactory, const qrb::CString&, std::span<const qrb::CString> names,
                                              std::int32_t currentIndex)
{
    if (isFactory)
        return {};
    m_names.clear();
    for (const qrb::CString& name : names) {
        qrb::CAudioPreset preset;
        preset.name = name;
        m_names.push_back(preset.visibleName().toUtf8());
    }
    m_current = currentIndex;
    return {};
}

qrb::CErrorPtr CProgramView::onPresetData(std::int32_t, const qrb::CAudioPreset&)
{
    return {};
}

qrb::CErrorPtr CProgramView::onBankData(std::int32_t, const qrb::CAudioPresetBank&)
{
    return {};
}

} // namespace monitor
