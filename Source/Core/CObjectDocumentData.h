// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CCheckedObject.h"
#include "Core/CError.h"
#include "Core/CTextRecord.h"
#include "Core/CTextRef.h"

#include <atomic>
#include <cstdint>
#include <span>

namespace qrb {

class CInputStream;

/// The loaded string table of a compiled document: each text decoded once. Lives as long as an object or a template
/// made from the document, or a copy of one of its texts.
/// Thread: any, once loaded.
class CObjectDocumentData : public CCheckedObject {
public:
    /// What the loader needs of a string, close together.
    struct CBrief {
        std::uint32_t hash;
        bool hasBrace;
        bool isOff;
    };

    CObjectDocumentData() = default;
    ~CObjectDocumentData() override;

    /// Decodes the table at the start of a document in memory, which outlives the data unless `isStatic` is off.
    /// `node` gets the bytes behind the table: root prefix and root node.
    [[nodiscard]] CErrorPtr load(std::span<const std::uint8_t> document, bool isStatic,
                                 std::span<const std::uint8_t>& node);

    [[nodiscard]] bool isStatic() const { return m_isStatic; }
    [[nodiscard]] std::size_t stringCount() const { return m_count; }
    [[nodiscard]] const CTextRecord& string(std::size_t index) const { return m_strings[index]; }
    [[nodiscard]] const CBrief& brief(std::size_t index) const { return m_briefs[index]; }

    void retain() const { m_references.fetch_add(1, std::memory_order_relaxed); }
    void release() const;

private:
    CTextRecord* m_strings = nullptr;
    std::size_t m_count = 0;
    CArray<CBrief, 1> m_briefs;
    bool m_isStatic = false;
    mutable std::atomic<std::uint32_t> m_references{0};
};

/// Holds a document's data.
class CDocumentRef {
public:
    CDocumentRef() = default;
    explicit CDocumentRef(const CObjectDocumentData& data) : m_data(&data) { data.retain(); }
    CDocumentRef(const CDocumentRef& other) : m_data(other.m_data)
    {
        if (m_data != nullptr)
            m_data->retain();
    }
    CDocumentRef(CDocumentRef&& other) noexcept : m_data(std::exchange(other.m_data, nullptr)) {}
    CDocumentRef& operator=(CDocumentRef other) noexcept
    {
        std::swap(m_data, other.m_data);
        return *this;
    }
    ~CDocumentRef()
    {
        if (m_data != nullptr)
            m_data->release();
    }

    [[nodiscard]] const CObjectDocumentData& operator*() const { return *m_data; }
    [[nodiscard]] const CObjectDocumentData* operator->() const { return m_data; }
    [[nodiscard]] const CObjectDocumentData* get() const { return m_data; }

private:
    const CObjectDocumentData* m_data = nullptr;
};

} // namespace qrb
