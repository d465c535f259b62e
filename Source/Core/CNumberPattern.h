// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace qrb {

/// One conversion of a format in the manner of printf, taken apart: "%-8.2f".
struct CNumberPattern {
    bool isLeft = false;
    bool hasPlus = false;
    bool hasBlank = false;
    bool hasZeros = false;
    bool isAlternate = false;
    int width = 0;
    int precision = -1; // none given
    bool isWidthArg = false;
    bool isPrecisionArg = false;
    int longCount = 0;   // "l" once, "ll" twice; "z", "j" and "t" count as two, "h" as -1, "hh" as -2
    char conversion = 0; // 0: the format ended

    /// Reads what follows a "%" and moves `at` behind it.
    static CNumberPattern parse(const char*& at) noexcept;
    [[nodiscard]] bool isFloat() const noexcept;
    [[nodiscard]] bool isInteger() const noexcept;
};

/// Characters collected in a buffer of fixed size; what is too much is dropped.
class CBoundedText {
public:
    explicit CBoundedText(std::span<char> room) noexcept : m_room(room) {}
    void put(char c) noexcept;
    void put(std::string_view text) noexcept;
    /// Puts a number's text with its sign, widened with blanks or zeros as the pattern wants.
    void putPadded(const CNumberPattern& pattern, std::string_view sign, std::string_view body,
                   bool mayFillZeros) noexcept;
    void putFloat(const CNumberPattern& pattern, double value) noexcept;
    void putInteger(const CNumberPattern& pattern, std::uint64_t magnitude, bool isNegative) noexcept;
    void putText(const CNumberPattern& pattern, const char* text) noexcept;
    [[nodiscard]] std::string_view view() const noexcept { return {m_room.data(), m_length}; }

private:
    std::span<char> m_room;
    std::size_t m_length = 0;
};

} // namespace qrb
