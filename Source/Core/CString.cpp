// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CString.h"

#include "Core/CQrbMemAllocator.h"

#include <algorithm>
#include <cstring>
#include <type_traits>
#include <utility>

namespace qrb {

namespace {

constexpr std::size_t kNarrowSpareBytes = 8;
constexpr std::size_t kWideSpareBytes = 16;
// Keeps every size of a text in 32 bits; what asks for more is handed to the allocator as impossible.
constexpr std::size_t kMaxLength = 0x7FFFFF00;

/// Characters of a text in either form, for code that is the same for both.
template <typename F>
auto visitUnits(const CString& text, const F& use)
{
    const auto* narrow = reinterpret_cast<const unsigned char*>(text.narrowData());
    return text.isWide() ? use(text.wideData()) : use(narrow);
}

std::size_t checkedLength(std::size_t length)
{
    if (length > kMaxLength) [[unlikely]] {
        CQrbMemAllocator::release(CQrbMemAllocator::allocate(static_cast<std::size_t>(-1)));
    }
    return length;
}

template <typename A, typename B>
std::strong_ordering compareUnits(const A* a, std::size_t lengthA, const B* b, std::size_t lengthB) noexcept
{
    const std::size_t common = std::min(lengthA, lengthB);
    if constexpr (sizeof(A) == 1 && sizeof(B) == 1) {
        const int order = std::memcmp(a, b, common);
        if (order != 0) {
            return order <=> 0;
        }
    } else {
        for (std::size_t i = 0; i < common; ++i) {
            if (a[i] != b[i]) {
                return static_cast<char16_t>(a[i]) <=> static_cast<char16_t>(b[i]);
            }
        }
    }
    return lengthA <=> lengthB;
}

/// Lower case of the letters in ASCII and Latin-1, whatever the locale.
char16_t foldCase(char16_t unit) noexcept
{
    const bool isAscii = unit >= u'A' && unit <= u'Z';
    const bool isLatin = unit >= 0xC0 && unit <= 0xDE && unit != 0xD7;
    return isAscii || isLatin ? static_cast<char16_t>(unit + 0x20) : unit;
}

bool isSpace(char16_t unit) noexcept
{
    return unit == u' ' || unit == u'\t' || unit == u'\r' || unit == u'\n';
}

} // namespace

CString::CString(const char* narrow) : CString(std::string_view(narrow != nullptr ? narrow : "")) {}

CString::CString(std::string_view narrow)
{
    m_inline[0] = 0;
    assign(narrow);
}

CString::CString(const CString& other) : m_isWide(other.m_isWide)
{
    makeRoom(other.m_length);
    std::memcpy(buffer(), other.buffer(), (other.m_length + std::size_t{1}) << (m_isWide ? 1 : 0));
    m_length = other.m_length;
}

CString::CString(CString&& other) noexcept
{
    takeFrom(other);
}

CString& CString::operator=(const CString& other)
{
    if (this != &other) {
        clear();
        m_isWide = other.m_isWide;
        makeRoom(other.m_length);
        std::memcpy(buffer(), other.buffer(), (other.m_length + std::size_t{1}) << (m_isWide ? 1 : 0));
        m_length = other.m_length;
    }
    return *this;
}

CString& CString::operator=(CString&& other) noexcept
{
    if (this != &other) {
        CQrbMemAllocator::release(m_heap);
        takeFrom(other);
    }
    return *this;
}

CString::~CString()
{
    if (m_heap != nullptr) {
        CQrbMemAllocator::release(m_heap);
    }
}

void CString::takeFrom(CString& other) noexcept
{
    m_heap = std::exchange(other.m_heap, nullptr);
    m_capacity = std::exchange(other.m_capacity, static_cast<std::uint32_t>(kInlineBytes));
    m_length = std::exchange(other.m_length, 0U);
    m_isWide = std::exchange(other.m_isWide, false);
    if (m_heap == nullptr) {
        std::memcpy(m_inline, other.m_inline, kInlineBytes);
    }
    other.m_inline[0] = 0;
}

void CString::makeRoom(std::size_t length)
{
    const std::size_t needed = (checkedLength(length) + 1) << (m_isWide ? 1 : 0);
    if (needed <= m_capacity) {
        return;
    }
    const std::size_t capacity = needed + (m_isWide ? kWideSpareBytes : kNarrowSpareBytes);
    if (m_heap != nullptr) {
        m_heap = static_cast<char*>(CQrbMemAllocator::reallocate(m_heap, capacity));
    } else {
        m_heap = static_cast<char*>(CQrbMemAllocator::allocate(capacity));
        std::memcpy(m_heap, m_inline, kInlineBytes);
    }
    m_capacity = static_cast<std::uint32_t>(capacity);
}

void CString::setLength(std::size_t length) noexcept
{
    m_length = static_cast<std::uint32_t>(length);
    if (m_isWide) {
        wideBuffer()[length] = 0;
    } else {
        buffer()[length] = 0;
    }
}

void CString::assign(std::string_view narrow)
{
    makeRoom(narrow.size());
    std::copy(narrow.begin(), narrow.end(), buffer());
    setLength(narrow.size());
}

void CString::clear() noexcept
{
    m_isWide = false;
    setLength(0);
}

void CString::reserve(std::size_t length)
{
    makeRoom(length);
}

void CString::truncate(std::size_t length) noexcept
{
    if (length < m_length) {
        setLength(length);
    }
}

void CString::widen()
{
    if (m_isWide) {
        return;
    }
    m_isWide = true;
    makeRoom(m_length);
    // From the back, since both forms share the room.
    const auto* bytes = reinterpret_cast<const unsigned char*>(buffer());
    for (std::size_t i = m_length; i-- > 0;) {
        const char16_t unit = bytes[i];
        wideBuffer()[i] = unit;
    }
    setLength(m_length);
}

void CString::narrow()
{
    if (!m_isWide) {
        return;
    }
    for (std::size_t i = 0; i < m_length; ++i) {
        const char16_t unit = wideBuffer()[i];
        buffer()[i] = static_cast<char>(static_cast<unsigned char>(unit & 0xFF));
    }
    m_isWide = false;
    setLength(m_length);
}

CString& CString::append(char16_t unit)
{
    if (unit > 0xFF) {
        widen();
    }
    makeRoom(m_length + std::size_t{1});
    if (m_isWide) {
        wideBuffer()[m_length] = unit;
    } else {
        buffer()[m_length] = static_cast<char>(static_cast<unsigned char>(unit));
    }
    setLength(m_length + std::size_t{1});
    return *this;
}

CString& CString::appendCodePoint(char32_t codePoint)
{
    if (codePoint <= 0xFFFF) {
        return append(static_cast<char16_t>(codePoint));
    }
    if (codePoint <= 0x10FFFF) {
        append(static_cast<char16_t>(0xD800 + ((codePoint - 0x10000) >> 10)));
        append(static_cast<char16_t>(0xDC00 + ((codePoint - 0x10000) & 0x3FF)));
    }
    return *this;
}

CString& CString::append(std::string_view narrow)
{
    const std::size_t length = m_length + narrow.size();
    makeRoom(length);
    if (m_isWide) {
        std::transform(narrow.begin(), narrow.end(), wideBuffer() + m_length,
                       [](char c) { return static_cast<char16_t>(static_cast<unsigned char>(c)); });
    } else {
        std::copy(narrow.begin(), narrow.end(), buffer() + m_length);
    }
    setLength(length);
    return *this;
}

CString& CString::operator+=(const CString& other)
{
    if (other.m_isWide) {
        widen();
    }
    // Read after the room is made: `other` may be this very text.
    const std::size_t added = other.m_length;
    makeRoom(m_length + added);
    if (!m_isWide) {
        std::memcpy(buffer() + m_length, other.buffer(), added);
    } else if (other.m_isWide) {
        std::memcpy(wideBuffer() + m_length, other.wideBuffer(), added * sizeof(char16_t));
    } else {
        const auto* bytes = reinterpret_cast<const unsigned char*>(other.buffer());
        std::copy_n(bytes, added, wideBuffer() + m_length);
    }
    setLength(m_length + added);
    return *this;
}

CString& CString::operator+=(const char* narrow)
{
    return narrow != nullptr ? append(std::string_view(narrow)) : *this;
}

void CString::set(std::size_t index, char16_t unit)
{
    if (unit > 0xFF) {
        widen();
    }
    if (m_isWide) {
        wideBuffer()[index] = unit;
    } else {
        buffer()[index] = static_cast<char>(static_cast<unsigned char>(unit));
    }
}

std::size_t CString::find(char16_t unit, std::size_t from) const noexcept
{
    if (from >= m_length) {
        return npos;
    }
    return visitUnits(*this, [&](const auto* units) {
        const auto* found = std::find(units + from, units + m_length, unit);
        return found == units + m_length ? npos : static_cast<std::size_t>(found - units);
    });
}

std::size_t CString::rfind(char16_t unit) const noexcept
{
    for (std::size_t i = m_length; i-- > 0;) {
        if (at(i) == unit) {
            return i;
        }
    }
    return npos;
}

bool CString::matchesAt(std::size_t pos, const CString& text) const noexcept
{
    if (pos > m_length || text.m_length > m_length - pos) {
        return false;
    }
    return visitUnits(*this, [&](const auto* units) {
        return visitUnits(text,
                          [&](const auto* other) { return std::equal(other, other + text.m_length, units + pos); });
    });
}

std::size_t CString::find(const CString& text, std::size_t from) const noexcept
{
    if (text.m_length == 0) {
        return from <= m_length ? from : npos;
    }
    for (std::size_t pos = find(text.at(0), from); pos != npos; pos = find(text.at(0), pos + 1)) {
        if (matchesAt(pos, text)) {
            return pos;
        }
    }
    return npos;
}

CString CString::substr(std::size_t pos, std::size_t count) const
{
    if (pos >= m_length) {
        return {};
    }
    const std::size_t taken = std::min(count, m_length - pos);
    return m_isWide ? fromUtf16({wideBuffer() + pos, taken}) : CString(std::string_view(buffer() + pos, taken));
}

bool CString::startsWith(const CString& text) const noexcept
{
    return matchesAt(0, text);
}

bool CString::endsWith(const CString& text) const noexcept
{
    return text.m_length <= m_length && matchesAt(m_length - text.m_length, text);
}

CString CString::trimmed() const
{
    std::size_t first = 0;
    std::size_t end = m_length;
    while (first < end && isSpace(at(first))) {
        ++first;
    }
    while (end > first && isSpace(at(end - 1))) {
        --end;
    }
    return end - first == m_length ? *this : substr(first, end - first);
}

bool CString::equals(const CString& other) const noexcept
{
    return m_length == other.m_length && matchesAt(0, other);
}

bool CString::equals(const char* narrow) const noexcept
{
    return std::is_eq(compare(narrow));
}

std::strong_ordering CString::compare(const CString& other) const noexcept
{
    return visitUnits(*this, [&](const auto* a) {
        return visitUnits(other, [&](const auto* b) { return compareUnits(a, m_length, b, other.m_length); });
    });
}

std::strong_ordering CString::compare(const char* narrow) const noexcept
{
    const std::string_view other(narrow != nullptr ? narrow : "");
    return visitUnits(*this, [&](const auto* a) {
        return compareUnits(a, m_length, reinterpret_cast<const unsigned char*>(other.data()), other.size());
    });
}

int CString::compareNoCase(const CString& other) const noexcept
{
    const std::size_t common = std::min(m_length, other.m_length);
    for (std::size_t i = 0; i < common; ++i) {
        const int difference = int{foldCase(at(i))} - int{foldCase(other.at(i))};
        if (difference != 0) {
            return difference;
        }
    }
    return m_length < other.m_length ? -1 : m_length > other.m_length ? 1 : 0;
}

std::uint32_t CString::hash() const noexcept
{
    return visitUnits(*this, [&](const auto* units) {
        std::uint32_t hash = 2166136261U;
        for (std::size_t i = 0; i < m_length; ++i) {
            hash = (hash ^ units[i]) * 16777619U;
        }
        return hash;
    });
}

} // namespace qrb
