// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CCheckedObject.h"
#include "Core/CError.h"
#include "Core/CQrbStdAllocator.h"
#include "Core/CTextRecord.h"
#include "Core/CTextRef.h"

#include <atomic>
#include <cstdint>
#include <deque>
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
        std::int32_t expression; ///< index of the expression that the whole string is, or -1
        bool hasBrace;
        bool isOff;
    };
    /// "{reference?def}", by far the most frequent form: inherited, and nothing around it.
    struct CExpression {
        CTextRecord reference; ///< empty for the attribute's own name
        CTextRecord def;
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

    /// The expression that a string is, or null for any other string.
    [[nodiscard]] const CExpression* expression(std::size_t index) const
    {
        const std::int32_t expression = m_briefs[index].expression;
        return expression < 0 ? nullptr : &m_expressions[static_cast<std::size_t>(expression)];
    }

    void retain() const { m_references.fetch_add(1, std::memory_order_relaxed); }
    void release() const;

private:
    void addString(CString&& text);
    [[nodiscard]] std::int32_t addExpression(const CString& text);

    CTextRecord* m_strings = nullptr;
    std::size_t m_count = 0;
    CArray<CBrief, 1> m_briefs;
    std::deque<CExpression, CQrbStdAllocator<CExpression>> m_expressions; ///< they do not move
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
