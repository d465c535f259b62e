// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CQrbStdAllocator.h"
#include "Core/CString.h"

#include <cstdint>
#include <optional>
#include <span>

namespace qrb {

/// One row of a linked-in table: the data begins with its size as u32, little endian, and the bytes follow.
struct CResourceRow {
    const std::uint8_t* data;
    const char* name;
};

/// The module's own data files by name, used in place. Names count exactly as written.
/// Filled at module entry, read-only afterwards. Thread: any, once filled.
class CResourceStore : public CCheckedObject {
public:
    /// Enters rows of a linked-in table; a later row of the same name replaces an earlier one.
    void addRows(std::span<const CResourceRow> rows);
    /// Enters bytes that the caller keeps valid until the module is left.
    void add(const CString& name, std::span<const std::uint8_t> bytes);

    /// The bytes of a resource, which may be none at all; nullopt if there is no such resource.
    [[nodiscard]] std::optional<std::span<const std::uint8_t>> find(const CString& name) const;

private:
    CMap<CString, std::span<const std::uint8_t>> m_resources;
};

} // namespace qrb
