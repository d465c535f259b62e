// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace qrb {

/// Text, narrow (one byte a character, code points 0 to 255) or wide (16-bit units), turning wide on demand when a
/// character above 255 is added. Up to 26 narrow or 12 wide characters live inside the object. Narrow and wide texts
/// are equal, order and hash alike when their character values are equal. Always NUL terminated; a length of 4 GB or
/// more ends the process.
class CString {
public:
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    CString() noexcept { m_inline[0] = 0; }
    /// Narrow text, each byte a code point 0 to 255 (not UTF-8); null is the empty text.
    CString(const char* narrow);
    CString(std::string_view narrow);
    CString(const CString& other);
    CString(CString&& other) noexcept;
    CString& operator=(const CString& other);
    CString& operator=(CString&& other) noexcept;
    ~CString();

    /// Decodes UTF-8. A byte that starts no sequence and a sequence cut short or badly continued are skipped; a code
    /// point above 0xFFFF becomes a surrogate pair. Narrow when all characters are below 256.
    [[nodiscard]] static CString fromUtf8(std::string_view utf8);
    /// 16-bit units; narrow when all are below 256.
    [[nodiscard]] static CString fromUtf16(std::u16string_view units);
    /// UTF-8; a surrogate pair becomes one 4-byte sequence, a lone surrogate is dropped.
    [[nodiscard]] std::string toUtf8() const;

    [[nodiscard]] std::size_t length() const noexcept { return m_length; }
    [[nodiscard]] bool empty() const noexcept { return m_length == 0; }
    [[nodiscard]] bool isWide() const noexcept { return m_isWide; }
    /// Character at `index`, which is at most length() (the NUL behind the text).
    [[nodiscard]] char16_t at(std::size_t index) const noexcept
    {
        return m_isWide ? wideBuffer()[index] : static_cast<char16_t>(static_cast<unsigned char>(buffer()[index]));
    }
    [[nodiscard]] char16_t operator[](std::size_t index) const noexcept { return at(index); }
    /// NUL-terminated characters of a narrow text; the empty text for a wide one.
    [[nodiscard]] const char* narrowData() const noexcept { return m_isWide ? "" : buffer(); }
    /// NUL-terminated units of a wide text; the empty text for a narrow one.
    [[nodiscard]] const char16_t* wideData() const noexcept { return m_isWide ? wideBuffer() : u""; }
    /// Characters of a narrow text as a view; empty for a wide one.
    [[nodiscard]] std::string_view narrowView() const noexcept
    {
        return {narrowData(), m_isWide ? 0 : std::size_t{m_length}};
    }

    CString& operator+=(const CString& other);
    CString& operator+=(const char* narrow);
    CString& append(char16_t unit);
    CString& append(std::string_view narrow);
    /// Appends a code point; above 0xFFFF as a surrogate pair, above 0x10FFFF not at all.
    CString& appendCodePoint(char32_t codePoint);
    /// Replaces the character at `index`, which is below length().
    void set(std::size_t index, char16_t unit);
    void clear() noexcept;
    /// Makes room for `length` characters of the present form.
    void reserve(std::size_t length);
    /// Cuts the text to `length` characters if it is longer.
    void truncate(std::size_t length) noexcept;
    /// Turns the text narrow in place; characters above 255 keep their low byte.
    void narrow();
    /// Turns the text wide in place.
    void widen();

    [[nodiscard]] std::size_t find(char16_t unit, std::size_t from = 0) const noexcept;
    [[nodiscard]] std::size_t find(const CString& text, std::size_t from = 0) const noexcept;
    [[nodiscard]] std::size_t rfind(char16_t unit) const noexcept;
    [[nodiscard]] bool contains(char16_t unit) const noexcept { return find(unit) != npos; }
    /// Up to `count` characters from `pos` on; empty when `pos` is behind the end. Narrow when all are below 256.
    [[nodiscard]] CString substr(std::size_t pos, std::size_t count = npos) const;
    [[nodiscard]] bool startsWith(const CString& text) const noexcept;
    [[nodiscard]] bool endsWith(const CString& text) const noexcept;
    /// Without blanks, tabs, CR and LF at both ends.
    [[nodiscard]] CString trimmed() const;

    /// Below, at or above 0 as the texts order with the letters of ASCII and Latin-1 folded to lower case.
    [[nodiscard]] int compareNoCase(const CString& other) const noexcept;
    /// The same for narrow and wide texts of equal characters.
    [[nodiscard]] std::uint32_t hash() const noexcept;

    /// Bytes of the present room with the terminator; 27 while the text lives inside the object.
    [[nodiscard]] std::size_t capacityBytes() const noexcept { return m_capacity; }
    [[nodiscard]] bool isInline() const noexcept { return m_heap == nullptr; }

    friend bool operator==(const CString& a, const CString& b) noexcept { return a.equals(b); }
    friend bool operator==(const CString& a, const char* b) noexcept { return a.equals(b); }
    friend std::strong_ordering operator<=>(const CString& a, const CString& b) noexcept { return a.compare(b); }
    friend std::strong_ordering operator<=>(const CString& a, const char* b) noexcept { return a.compare(b); }
    friend CString operator+(CString a, const CString& b) { return std::move(a += b); }
    friend CString operator+(CString a, const char* b) { return std::move(a += b); }

private:
    static constexpr std::size_t kInlineBytes = 27;

    [[nodiscard]] const char* buffer() const noexcept { return m_heap != nullptr ? m_heap : m_inline; }
    [[nodiscard]] char* buffer() noexcept { return m_heap != nullptr ? m_heap : m_inline; }
    [[nodiscard]] const char16_t* wideBuffer() const noexcept { return reinterpret_cast<const char16_t*>(buffer()); }
    [[nodiscard]] char16_t* wideBuffer() noexcept { return reinterpret_cast<char16_t*>(buffer()); }

    [[nodiscard]] bool equals(const CString& other) const noexcept;
    [[nodiscard]] bool equals(const char* narrow) const noexcept;
    [[nodiscard]] std::strong_ordering compare(const CString& other) const noexcept;
    [[nodiscard]] std::strong_ordering compare(const char* narrow) const noexcept;

    void assign(std::string_view narrow);
    void takeFrom(CString& other) noexcept;
    void makeRoom(std::size_t length);
    void setLength(std::size_t length) noexcept;
    [[nodiscard]] bool matchesAt(std::size_t pos, const CString& text) const noexcept;

    char* m_heap = nullptr;
    std::uint32_t m_capacity = kInlineBytes;
    std::uint32_t m_length = 0;
    alignas(2) char m_inline[kInlineBytes];
    bool m_isWide = false;
};

} // namespace qrb

template <>
struct std::hash<qrb::CString> {
    std::size_t operator()(const qrb::CString& text) const noexcept { return text.hash(); }
};
