// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CCheckedObject.h"
#include "Core/CQrbStdAllocator.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <span>

namespace qrb {

/// Messages that wait for a client. A message that says anew what an older one said replaces it, so a client that takes
/// none for a while costs as much as the state it follows. Not locked.
class CParamInterfaceQueue : public CCheckedObject {
public:
    /// Most bytes that wait. More empty the queue, and the client has to be told everything anew.
    static constexpr std::size_t kMaxBytes = std::size_t{64} << 20;

    explicit CParamInterfaceQueue(std::size_t maxBytes = kMaxBytes) : m_maxBytes(maxBytes) {}

    void append(CByteArray&& message);
    /// False if no message waits.
    [[nodiscard]] bool takeFirst(CByteArray& out);

    /// Whether messages have been dropped since the last call; until it, all are.
    [[nodiscard]] bool takeOverrun();
    [[nodiscard]] std::size_t byteCount() const { return m_bytes; }
    [[nodiscard]] std::size_t size() const { return m_entries.size(); }

private:
    struct CEntry {
        CByteArray message;
        std::size_t keySize = 0;   ///< so many bytes at the front tell what the message is about; 0: it stands alone
        std::uint64_t keyHash = 0; ///< of those bytes
        std::uint64_t serial = 0;
    };
    using CEntries = std::list<CEntry, CQrbStdAllocator<CEntry>>;

    void dropOlder(const CEntry& entry);
    void erase(CEntries::iterator place);
    void clear();
    [[nodiscard]] static std::uint64_t hash(std::span<const std::uint8_t> key);

    std::size_t m_maxBytes;
    std::size_t m_bytes = 0;
    std::uint64_t m_lastSerial = 0;
    CEntries m_entries;
    CMap<std::uint64_t, CEntries::iterator> m_newest; ///< of each key, by its hash
    CMap<std::int32_t, std::uint64_t> m_newestInfo;   ///< serial of the last description, by listener
    bool m_isOverrun = false;
};

} // namespace qrb
