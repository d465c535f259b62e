// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CNumberText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace qrb {

namespace {

int digitValue(char16_t unit) noexcept
{
    if (unit >= u'0' && unit <= u'9') {
        return unit - u'0';
    }
    if (unit >= u'a' && unit <= u'f') {
        return unit - u'a' + 10;
    }
    if (unit >= u'A' && unit <= u'F') {
        return unit - u'A' + 10;
    }
    return 99;
}

/// A run of decimal digits read from a text.
struct CDigits {
    double value = 0.0;
    int count = 0;
};

CDigits readDigits(const CString& text, std::size_t& pos) noexcept
{
    CDigits digits;
    for (; digitValue(text.at(pos)) < 10; ++pos) {
        digits.value = digits.value * 10.0 + digitValue(text.at(pos));
        ++digits.count;
    }
    return digits;
}

/// `value` * 10^`exponent`. Divides for negative exponents, since only positive powers of ten are exact.
double scaleByTen(double value, double exponent) noexcept
{
    constexpr double kExactSteps = 300.0; // a power within the range of doubles
    for (; value != 0.0 && exponent < -kExactSteps; exponent += kExactSteps) {
        value /= std::pow(10.0, kExactSteps);
    }
    if (value == 0.0) {
        return 0.0;
    }
    return exponent < 0.0 ? value / std::pow(10.0, -exponent) : value * std::pow(10.0, exponent);
}

double readSign(const CString& text, std::size_t& pos) noexcept
{
    const char16_t unit = text.at(pos);
    if (unit == u'-' || unit == u'+') {
        ++pos;
    }
    return unit == u'-' ? -1.0 : 1.0;
}

} // namespace

std::int64_t roundHalfAway(double value) noexcept
{
    if (std::isnan(value)) {
        return 0;
    }
    // std::round takes halves away from zero, without the error that adding 0.5 makes just below a half.
    const double rounded = std::round(value);
    constexpr double kLimit = 9223372036854775808.0;
    if (rounded >= kLimit) {
        return std::numeric_limits<std::int64_t>::max();
    }
    return rounded < -kLimit ? std::numeric_limits<std::int64_t>::min() : static_cast<std::int64_t>(rounded);
}

std::int32_t roundToInt(double value) noexcept
{
    using CLimits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(roundHalfAway(value), CLimits::min(), CLimits::max()));
}

bool parseInteger(const CString& text, std::int32_t& out) noexcept
{
    std::size_t pos = 0;
    const bool isNegative = text.at(0) == u'-';
    pos += isNegative ? 1 : 0;
    bool isHex = false;
    if (text.at(pos) == u'#' || text.at(pos) == u'$') {
        isHex = true;
        pos += 1;
    } else if (text.at(pos) == u'0' && (text.at(pos + 1) == u'x' || text.at(pos + 1) == u'X')) {
        isHex = true;
        pos += 2;
    }
    const std::int64_t base = isHex ? 16 : 10;
    const std::int64_t limit = isHex && !isNegative ? 0xFFFFFFFFLL : isNegative ? 0x80000000LL : 0x7FFFFFFFLL;
    if (pos >= text.length()) {
        return false;
    }
    std::int64_t value = 0;
    for (; pos < text.length(); ++pos) {
        const int digit = digitValue(text.at(pos));
        if (digit >= base) {
            return false;
        }
        value = value * base + digit;
        if (value > limit) {
            return false;
        }
    }
    out = static_cast<std::int32_t>(isNegative ? -value : value);
    return true;
}

bool parseNumber(const CString& text, double& out) noexcept
{
    std::size_t pos = 0;
    const double sign = readSign(text, pos);
    const CDigits integer = readDigits(text, pos);
    CDigits last = integer;
    CDigits fraction;
    if (text.at(pos) == u'.' || text.at(pos) == u',') {
        ++pos;
        fraction = last = readDigits(text, pos);
    }
    double exponent = 0.0;
    if (last.count > 0 && (text.at(pos) == u'e' || text.at(pos) == u'E')) {
        ++pos;
        const double exponentSign = readSign(text, pos);
        last = readDigits(text, pos);
        exponent = exponentSign * std::min(last.value, 100000.0);
    }
    if (last.count == 0 || pos != text.length()) {
        return false;
    }
    const double mantissa = integer.value + scaleByTen(fraction.value, -fraction.count);
    const double value = sign * scaleByTen(mantissa, exponent);
    if (!std::isfinite(value)) {
        return false;
    }
    out = value;
    return true;
}

CString formatInteger(std::int64_t value)
{
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof(digits), value).ptr;
    return CString(std::string_view(digits, static_cast<std::size_t>(end - digits)));
}

CString formatFixed(double value, int decimals)
{
    const int count = std::clamp(decimals, 0, 15);
    const std::int64_t scaled = roundHalfAway(value * std::pow(10.0, count));
    // The magnitude as unsigned, since the lowest integer has no positive counterpart.
    const auto magnitude = scaled < 0 ? 0 - static_cast<std::uint64_t>(scaled) : static_cast<std::uint64_t>(scaled);
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof(digits), magnitude).ptr;
    const auto digitCount = static_cast<int>(end - digits);

    CString text(scaled < 0 ? "-" : "");
    for (int place = std::max(digitCount, count + 1) - 1; place >= 0; --place) {
        text.append(place < digitCount ? static_cast<char16_t>(digits[digitCount - 1 - place]) : u'0');
        if (place == count && count > 0) {
            text.append(u'.');
        }
    }
    return text;
}

CString formatShortest(double value)
{
    char digits[40];
    const auto end = std::to_chars(digits, digits + sizeof(digits), value).ptr;
    return CString(std::string_view(digits, static_cast<std::size_t>(end - digits)));
}

} // namespace qrb
