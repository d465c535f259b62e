// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Interface/CParamInterfaceQueue.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

namespace qrb {

namespace {

/// Messages of which only the newest counts, and how many 32-bit fields behind the name tell what they are about.
struct CNewestCounts {
    std::string_view event;
    std::size_t fieldCount;
};

// A change is about a listener, the place in the parameter, and its format. Whatever came between two changes of the
// same place, the later one undoes the earlier, unless the default elements have changed: these fill gaps.
constexpr std::string_view kChange = "update-param";
constexpr std::string_view kInfo = "update-param-info";
constexpr CNewestCounts kRows[] = {
    {kChange, 9},
    {"update-registry", 2}, // listener, kind of bank
    {"update-undo-history", 0},
    {"update-internal-channel-count", 0},
    {"update-group-count", 0},
    {"update-io-channel-counts", 0},
    {"update-sample-rate", 0},
    {"export-slot-names", 0},
    {"start-viz", 0},
    {"stop-viz", 0},
    {"clear-client", 0},
};

constexpr std::size_t kFieldSize = sizeof(std::int32_t);

std::int32_t fieldAt(std::span<const std::uint8_t> message, std::size_t position)
{
    std::uint32_t value = 0;
    for (std::size_t i = kFieldSize; i > 0; --i)
        value = value << 8 | message[position + i - 1];
    return static_cast<std::int32_t>(value);
}

std::string_view eventOf(std::span<const std::uint8_t> message)
{
    if (message.size() < kFieldSize)
        return {};
    const auto length = static_cast<std::uint32_t>(fieldAt(message, 0));
    return length <= message.size() - kFieldSize
               ? std::string_view(reinterpret_cast<const char*>(message.data()) + kFieldSize, length)
               : std::string_view();
}

/// Bytes at the front of a message that tell what it is about; 0 if it stands alone.
std::size_t keySizeOf(std::span<const std::uint8_t> message, std::string_view event)
{
    const auto row = std::ranges::find(kRows, event, &CNewestCounts::event);
    if (event.empty() || row == std::end(kRows))
        return 0;
    const std::size_t size = kFieldSize + event.size() + row->fieldCount * kFieldSize;
    return size <= message.size() ? size : 0;
}

} // namespace

std::uint64_t CParamInterfaceQueue::hash(std::span<const std::uint8_t> key)
{
    std::uint64_t hash = 0xcbf29ce484222325u;
    for (const std::uint8_t byte : key)
        hash = (hash ^ byte) * 0x100000001b3u;
    return hash;
}

void CParamInterfaceQueue::append(CByteArray&& message)
{
    if (m_isOverrun)
        return;
    CEntry entry;
    entry.message = std::move(message);
    entry.serial = ++m_lastSerial;
    const std::span<const std::uint8_t> bytes = entry.message.span();
    const std::string_view event = eventOf(bytes);
    entry.keySize = keySizeOf(bytes, event);
    if (entry.keySize != 0) {
        entry.keyHash = hash(bytes.first(entry.keySize));
        dropOlder(entry);
    }
    const std::size_t listenerAt = kFieldSize + event.size();
    if (event == kInfo && listenerAt + kFieldSize <= bytes.size())
        m_newestInfo[fieldAt(bytes, listenerAt)] = entry.serial;
    const std::size_t size = entry.message.size();
    if (size > m_maxBytes - m_bytes) {
        clear();
        m_isOverrun = true;
        return;
    }
    m_bytes += size;
    m_entries.push_back(std::move(entry));
    if (m_entries.back().keySize != 0)
        m_newest[m_entries.back().keyHash] = std::prev(m_entries.end());
}

void CParamInterfaceQueue::dropOlder(const CEntry& entry)
{
    const auto known = m_newest.find(entry.keyHash);
    if (known == m_newest.end())
        return;
    const CEntry& older = *known->second;
    const bool isSame =
        older.keySize == entry.keySize && std::memcmp(older.message.data(), entry.message.data(), entry.keySize) == 0;
    if (!isSame)
        return;
    if (const std::string_view event = eventOf(entry.message.span()); event == kChange) {
        const auto info = m_newestInfo.find(fieldAt(entry.message.span(), kFieldSize + event.size()));
        if (info != m_newestInfo.end() && info->second > older.serial)
            return;
    }
    erase(known->second);
}

void CParamInterfaceQueue::erase(CEntries::iterator place)
{
    m_bytes -= place->message.size();
    if (const auto known = m_newest.find(place->keyHash); known != m_newest.end() && known->second == place)
        m_newest.erase(known);
    m_entries.erase(place);
}

void CParamInterfaceQueue::clear()
{
    m_entries.clear();
    m_newest.clear();
    m_newestInfo.clear();
    m_bytes = 0;
}

bool CParamInterfaceQueue::takeFirst(CByteArray& out)
{
    if (m_entries.empty())
        return false;
    out = std::move(m_entries.front().message);
    // The size is gone with the bytes.
    m_bytes -= out.size();
    m_entries.front().message.clear();
    erase(m_entries.begin());
    if (m_entries.empty())
        clear();
    return true;
}

bool CParamInterfaceQueue::takeOverrun()
{
    return std::exchange(m_isOverrun, false);
}

} // namespace qrb
