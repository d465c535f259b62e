// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <utility>

namespace qrb {

class CString;
struct CTextRecord;

/// Reference to an immutable text record. Attributes of a document's objects borrow: the object holds the document for
/// all of them, so that threads that build trees from one document do not fight over counters. A copy always counts.
/// Thread: a reference belongs to one thread, the record to all.
class CTextRef {
public:
    CTextRef() = default;
    /// A record of its own for this text.
    explicit CTextRef(const CString& text);
    explicit CTextRef(CString&& text);
    CTextRef(const CTextRef& other);
    CTextRef(CTextRef&& other) noexcept : m_bits(std::exchange(other.m_bits, 0)) {}
    CTextRef& operator=(const CTextRef& other);
    CTextRef& operator=(CTextRef&& other) noexcept
    {
        std::swap(m_bits, other.m_bits);
        return *this;
    }
    ~CTextRef()
    {
        if (isCounted())
            drop();
    }

    /// A counting reference to an existing record.
    [[nodiscard]] static CTextRef counted(const CTextRecord& record);
    /// A reference that the caller keeps valid by holding the record's document.
    [[nodiscard]] static CTextRef borrowed(const CTextRecord& record) noexcept
    {
        CTextRef ref;
        ref.m_bits = reinterpret_cast<std::uintptr_t>(&record) | kBorrowed;
        return ref;
    }

    [[nodiscard]] explicit operator bool() const { return m_bits != 0; }
    [[nodiscard]] const CTextRecord* record() const
    {
        return reinterpret_cast<const CTextRecord*>(m_bits & ~kBorrowed);
    }
    [[nodiscard]] const CTextRecord* operator->() const { return record(); }
    /// The text; empty for an empty reference.
    [[nodiscard]] const CString& text() const;

private:
    static constexpr std::uintptr_t kBorrowed = 1;

    [[nodiscard]] bool isCounted() const { return m_bits != 0 && (m_bits & kBorrowed) == 0; }
    void drop() noexcept;

    std::uintptr_t m_bits = 0;
};

} // namespace qrb
