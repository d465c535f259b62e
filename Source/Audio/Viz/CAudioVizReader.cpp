// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Viz/CAudioVizReader.h"

#include "Audio/Viz/CAudioVizData.h"
#include "Core/COutputStream.h"
#include "Core/CWriteSeqBuffer.h"

#include <algorithm>
#include <cmath>

namespace qrb {

namespace {

// Requests that lie further apart tell of a pause, not of a rate.
constexpr double kShortestInterval = 0.002;
constexpr double kLongestInterval = 0.5;
constexpr double kSmoothing = 0.1;

} // namespace

CAudioVizBlob encodeVizData(const CAudioVizData& record)
{
    constexpr std::size_t kHeadBytes = 2 * sizeof(std::int32_t);
    CWriteSeqBuffer buffer(4096);
    // Writing into memory does not fail.
    if (buffer.writeInt32(0) || buffer.writeInt32(static_cast<std::int32_t>(record.type())) || record.save(buffer))
        return nullptr;
    CByteArray bytes;
    buffer.getContiguous(bytes);
    const auto fieldBytes = static_cast<std::uint32_t>(bytes.size() - kHeadBytes);
    for (std::size_t i = 0; i < sizeof(fieldBytes); ++i)
        bytes[i] = static_cast<std::uint8_t>(fieldBytes >> (8 * i));
    return std::allocate_shared<const CByteArray>(CQrbStdAllocator<CByteArray>(), std::move(bytes));
}

void CAudioVizReader::removeListener(std::int32_t kind, const CString& name)
{
    const auto found = m_queues.find({kind, name});
    if (found != m_queues.end() && --found->second.listenerCount == 0)
        m_queues.erase(found);
}

void CAudioVizReader::add(std::int32_t kind, const CString& name, const CAudioVizBlob& record, std::size_t limit)
{
    const auto found = m_queues.find({kind, name});
    if (found == m_queues.end() || record == nullptr)
        return;
    CArray<CAudioVizBlob>& records = found->second.records;
    const std::size_t most =
        std::max<std::size_t>(limit, 1); // a source whose last writer has just gone has room for none
    if (records.size() >= most)
        records.removeAt(0, records.size() - most + 1);
    records.append(record);
}

CErrorPtr CAudioVizReader::write(COutputStream& out)
{
    for (auto& [key, queue] : m_queues) {
        const CArray<CAudioVizBlob> records = std::move(queue.records);
        queue.records.clear();
        if (records.empty())
            continue;
        QRB_TRY(out.writeInt32(static_cast<std::int32_t>(records.size())));
        QRB_TRY(out.writeString(key.second));
        for (const CAudioVizBlob& record : records)
            QRB_TRY(out.write(record->data(), record->size()));
    }
    return out.writeInt32(0);
}

void CAudioVizReader::flush()
{
    for (auto& entry : m_queues)
        entry.second.records.clear();
}

void CAudioVizReader::tellTime(double now)
{
    if (!std::isfinite(now))
        return;
    const double interval = now - m_lastTime;
    m_lastTime = now;
    if (!m_hasTime) {
        m_hasTime = true;
        return;
    }
    if (!(interval >= kShortestInterval && interval <= kLongestInterval))
        return;
    m_interval = m_interval == 0.0 ? interval : m_interval + (interval - m_interval) * kSmoothing;
}

double CAudioVizReader::rate() const
{
    return m_interval == 0.0 ? 0.0 : std::max(1.0, std::round(1.0 / m_interval));
}

} // namespace qrb
