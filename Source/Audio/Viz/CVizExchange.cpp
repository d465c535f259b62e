// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Viz/CVizExchange.h"

#include "Audio/Viz/CAudioInterfaceVizRequests.h"
#include "Core/CInputStream.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/CObjectClassInfo.h"
#include "Core/CTimer.h"
#include "Platform/CMessageLoop.h"
#include "Platform/Clock.h"

#include <algorithm>
#include <cmath>

namespace qrb {

namespace {

constexpr double kShortestTimeout = 0.01;
constexpr double kDefaultTimeout = 0.5;
/// Most bytes of a record.
constexpr std::int32_t kMaxRecordBytes = 4 << 20;

} // namespace

CVizExchange::CVizExchange() = default;
CVizExchange::~CVizExchange() = default;

void CVizExchange::declare(CObjectClassInfo& info)
{
    CObject::declare(info);
    info.attr<&CVizExchange::setFps>("fps");
    info.event<&CVizExchange::onTick>("tick");
}

CErrorPtr CVizExchange::init()
{
    QRB_TRY(CObject::init());
    const double timeout = getAttrDouble("inactive-timeout");
    m_inactiveTimeout = timeout >= kShortestTimeout ? timeout : kDefaultTimeout;
    return {};
}

CErrorPtr CVizExchange::initChilds()
{
    QRB_TRY(CObject::initChilds());
    QRB_TRY(findObjectByAttr("interface-client", m_client));
    m_client->setVizProcessor(this);
    for (auto& [key, request] : m_requests)
        sendRequest(key, request);
    return {};
}

void CVizExchange::unlink()
{
    // The client may have gone before.
    if (m_client != nullptr &&
        dynamic_cast<CAudioInterfaceVizRequests*>(findObject(getAttrString("interface-client"))) == m_client) {
        for (const auto& entry : m_requests)
            m_client->unlistenViz(entry.second.id);
        m_client->setVizProcessor(nullptr);
    }
    m_client = nullptr;
    m_requests.clear();
    CObject::unlink();
}

CErrorPtr CVizExchange::setFps(const CObjectAttr& value)
{
    const double fps = value.toDouble();
    m_fps = std::isfinite(fps) && fps > 0.0 ? fps : 0.0;
    if (m_fps == 0.0)
        return {};
    if (m_timer == nullptr) {
        QRB_TRY(createChild(m_timer, getAttrString("timer-tag", "core:timer"), "timer", ERequireTemplate::no));
        listenObject(*m_timer, "tick", "tick");
    }
    return m_timer->setAttrValue("fps", value, ESetter::now);
}

CErrorPtr CVizExchange::onTick()
{
    // By the clock of the ticks, which says how many of them there are in a second.
    const platform::CMessageLoop* const loop = platform::CMessageLoop::current();
    tick(loop != nullptr ? loop->now() : platform::clockSeconds());
    return {};
}

template <class F>
void CVizExchange::forEachEntry(const F& call)
{
    ++m_callDepth;
    for (std::size_t i = 0; i < m_entries.size(); ++i) // the array may grow in a call, the entries stay in place
        if (m_entries[i]->listener != nullptr)
            call(*m_entries[i]);
    if (--m_callDepth > 0)
        return;
    for (std::size_t i = m_entries.size(); i > 0; --i)
        if (m_entries[i - 1]->listener == nullptr)
            m_entries.removeAt(i - 1);
}

std::int32_t CVizExchange::addListener(const CString& name, CVizListener& listener, double inactiveTimeout,
                                       std::int32_t kind)
{
    CEntry& entry = *m_entries.append(std::make_unique<CEntry>());
    entry.told = {++m_lastHandle, name, kind};
    entry.listener = &listener;
    entry.inactiveTimeout = inactiveTimeout >= kShortestTimeout ? inactiveTimeout : m_inactiveTimeout;
    const auto place = m_requests.try_emplace(CKey{kind, name}).first;
    ++place->second.listenerCount;
    if (m_client != nullptr)
        sendRequest(place->first, place->second);
    return entry.told.handle;
}

void CVizExchange::sendRequest(const CKey& key, CRequest& request)
{
    if (request.isSent)
        return;
    request.isSent = true;
    request.id = m_client->listenViz(key.first, key.second);
}

void CVizExchange::removeListener(std::int32_t handle)
{
    const auto found = std::ranges::find_if(
        m_entries, [handle](const auto& entry) { return entry->listener != nullptr && entry->told.handle == handle; });
    if (found == m_entries.end())
        return;
    const auto request = m_requests.find(CKey{(*found)->told.kind, (*found)->told.name});
    if (request != m_requests.end() && --request->second.listenerCount == 0) {
        if (m_client != nullptr && request->second.isSent)
            m_client->unlistenViz(request->second.id);
        m_requests.erase(request);
    }
    (*found)->listener = nullptr;
    forEachEntry([](CEntry&) {}); // sweeps, unless calls are under way
}

void CVizExchange::requestExportSlotNames()
{
    if (m_client != nullptr)
        m_client->requestExportSlotNames();
}

void CVizExchange::setIdle(CEntry& entry)
{
    if (entry.isIdle)
        return;
    entry.isIdle = true;
    entry.listener->onVizIdle(entry.told);
}

void CVizExchange::tick(double now)
{
    forEachEntry([this](CEntry& entry) {
        const auto patience = static_cast<std::int64_t>(std::min(entry.inactiveTimeout * m_fps, 1e15));
        if (!entry.isIdle && ++entry.ticks >= patience)
            setIdle(entry);
    });
    if (m_client != nullptr && !m_requests.empty())
        m_client->requestVizData(now);
}

CErrorPtr CVizExchange::onStartViz()
{
    for (const auto& entry : m_entries) {
        entry->ticks = 0;
        entry->isIdle = false;
    }
    return {};
}

CErrorPtr CVizExchange::onStopViz()
{
    forEachEntry([this](CEntry& entry) { setIdle(entry); });
    return {};
}

CErrorPtr CVizExchange::onClearClient()
{
    m_pending.clear();
    return onStartViz();
}

void CVizExchange::deliver(const CString& name, const CAudioVizData& data)
{
    const std::int32_t kind = std::max(data.serial, kOwnInstance);
    forEachEntry([&](CEntry& entry) {
        if (entry.told.kind != kind || entry.told.name != name)
            return;
        entry.ticks = 0;
        entry.isIdle = false;
        entry.listener->onVizData(entry.told, data);
    });
}

void CVizExchange::deliverFirst()
{
    const auto node = m_pending.extract(m_pending.begin());
    deliver(node.mapped().name, *node.mapped().data);
}

void CVizExchange::deliverDue(double time)
{
    while (!m_pending.empty() && m_pending.begin()->first <= time)
        deliverFirst();
}

CErrorPtr CVizExchange::onVizData(CInputStream& in)
{
    double time = 0.0;
    QRB_TRY(in.readDouble(time));
    deliverDue(time);
    for (;;) {
        std::int32_t count = 0;
        QRB_TRY(in.readInt32(count));
        if (count == 0)
            return {};
        if (count < 0)
            return QRB_ERROR("@qrbstr_CVizExchange_onVizData_Count Invalid record count %1.", count);
        QRB_TRY(readSource(in, count, time));
    }
}

CErrorPtr CVizExchange::readSource(CInputStream& in, std::int32_t count, double time)
{
    CString name;
    QRB_TRY(in.readString(name));
    for (std::int32_t i = 0; i < count; ++i) {
        std::unique_ptr<CAudioVizData> data;
        QRB_TRY(readRecord(in, data));
        if (data == nullptr)
            continue;
        if (!(data->time > time)) {
            deliver(name, *data);
            continue;
        }
        if (m_pending.size() >= kMaxPending)
            deliverFirst();
        const double due = data->time;
        m_pending.emplace(due, CPending{name, std::move(data)});
    }
    return {};
}

CErrorPtr CVizExchange::readRecord(CInputStream& in, std::unique_ptr<CAudioVizData>& out)
{
    std::int32_t size = 0;
    std::int32_t type = 0;
    QRB_TRY(in.readInt32(size));
    QRB_TRY(in.readInt32(type));
    if (size < 0 || size > kMaxRecordBytes)
        return QRB_ERROR("@qrbstr_CVizExchange_onVizData_Size Invalid record size %1.", size);
    out = CAudioVizData::create(type);
    if (out == nullptr)
        return in.skip(static_cast<std::uint64_t>(size));
    CByteArray bytes;
    QRB_TRY(in.readBytes(bytes, static_cast<std::uint64_t>(size)));
    CMemoryReaderStatic fields(bytes.span());
    return out->load(fields);
}

CErrorPtr CVizExchange::onExportSlotNames(CInputStream& in)
{
    std::int32_t count = 0;
    QRB_TRY(in.readInt32(count));
    if (count < 0 || count > kMaxSlotNames)
        return QRB_ERROR("@qrbstr_CVizExchange_onExportSlotNames_Count Invalid slot count %1.", count);
    CMap<std::int32_t, CString> names;
    for (std::int32_t i = 0; i < count; ++i) {
        std::int32_t slot = 0;
        CString name;
        QRB_TRY(in.readInt32(slot));
        QRB_TRY(in.readString(name));
        names[slot] = name;
    }
    m_slotNames = std::move(names);
    return raiseEvent("export-slot-names-changed");
}

} // namespace qrb
