// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CSharedParam.h"

#include "Audio/CAudioParam.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamConverter.h"
#include "Core/CAppData.h"
#include "Core/CChunkId.h"

namespace qrb {

static constexpr std::uint32_t kRawChunk = chunkId("adat");

CSharedParam::CSharedParam(CAudioParam& param, CAppData& store, const CString& dataName)
    : m_param(param), m_store(store), m_dataName(dataName)
{
}

CSharedParam::~CSharedParam()
{
    m_dataListener.detach();
    detach();
}

CSharedParam::CDataListener::~CDataListener()
{
    detach();
}

bool CSharedParam::is(const CAudioParam& param, const CAppData& store, const CString& dataName) const
{
    return &m_param == &param && &m_store == &store && m_dataName == dataName;
}

void CSharedParam::onUpdate(const CUpdateInfo& info)
{
    if (info.sender == this)
        return;
    m_isStoreWanted.store(true);
    m_param.collector().wakeDeferred();
}

void CSharedParam::CDataListener::onUpdate(const CUpdateInfo& info)
{
    if (info.sender == &owner())
        return;
    owner().m_isLoadWanted.store(true);
    owner().m_param.collector().wakeDeferred();
}

void CSharedParam::run()
{
    if (!m_isStarted) {
        if (m_param.isBound())
            start();
        return;
    }
    // What was changed here comes first: it is newer than what another instance wrote before.
    if (m_isStoreWanted.exchange(false))
        store();
    if (m_isLoadWanted.exchange(false))
        load();
}

void CSharedParam::start()
{
    m_isStarted = true;
    const CAudioParamInfo& info = *m_param.info();
    const CAudioParamStorage& defaults = info.defaults;
    if (info.format.type == EAudioParamType::text)
        m_defaultText = defaults.text(0, 0);
    else if (info.format.type == EAudioParamType::number)
        info.components[0].converter->formatValue(m_defaultText, info, 0, info.defaultValue(0, 0), nullptr,
                                                  EValueStyle::normal);
    attach(&m_param.collector(), CAudioParamCollector::listenerKey(m_param));
    m_dataListener.attach(&m_store, m_dataName);
    load();
}

void CSharedParam::load()
{
    const CAudioParamInfo& info = *m_param.info();
    if (info.format.type == EAudioParamType::raw) {
        const CByteArray bytes = m_store.readData(m_dataName, kRawChunk);
        if (!bytes.empty())
            m_param.setRaw(0, 0, bytes.span(), this);
        return;
    }
    const CString text = m_store.getString(m_dataName, m_defaultText);
    if (info.format.type == EAudioParamType::text) {
        m_param.setString(0, 0, text, this);
        return;
    }
    bool isRead = false;
    const double value = info.components[0].converter->parseValue(info, 0, text, &isRead);
    if (isRead)
        m_param.setValue(value, this);
}

void CSharedParam::store()
{
    // Copied out first: writing tells the links of other instances, which must not meet a held parameter.
    const CAudioParamInfo& info = *m_param.info();
    if (info.format.type == EAudioParamType::raw)
        m_store.writeData(m_dataName, rawValue(), this, kRawChunk);
    else if (info.format.type == EAudioParamType::text)
        m_store.setString(m_dataName, m_param.text(), this);
    else
        m_store.setString(m_dataName, numberText(), this);
}

CByteArray CSharedParam::rawValue() const
{
    const CAudioParamGuard guard(m_param.collector());
    return CByteArray(m_param.editStorage(guard).raw(0, 0));
}

CString CSharedParam::numberText() const
{
    const CAudioParamInfo& info = *m_param.info();
    CString text;
    info.components[0].converter->formatValue(text, info, 0, m_param.value(), nullptr, EValueStyle::normal);
    return text;
}

} // namespace qrb
