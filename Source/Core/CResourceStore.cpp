// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CResourceStore.h"

namespace qrb {

namespace {

constexpr std::size_t kSizeBytes = 4;

std::uint32_t readSize(const std::uint8_t* bytes)
{
    std::uint32_t size = 0;
    for (std::size_t i = 0; i < kSizeBytes; ++i)
        size |= static_cast<std::uint32_t>(bytes[i]) << (8 * i);
    return size;
}

} // namespace

void CResourceStore::addRows(std::span<const CResourceRow> rows)
{
    for (const CResourceRow& row : rows)
        add(CString::fromUtf8(row.name), {row.data + kSizeBytes, readSize(row.data)});
}

void CResourceStore::add(const CString& name, std::span<const std::uint8_t> bytes)
{
    m_resources.insert_or_assign(name, bytes);
}

std::optional<std::span<const std::uint8_t>> CResourceStore::find(const CString& name) const
{
    const auto found = m_resources.find(name);
    if (found == m_resources.end())
        return std::nullopt;
    return found->second;
}

} // namespace qrb
