// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/QrbPreset/CNumberText.h"

#include "Audio/CAudioParamConverter.h"
#include "Audio/CAudioParamInfo.h"
#include "Audio/Converters/CAudioParamConverterEnum.h"
#include "Audio/Converters/CAudioParamConverterRatio.h"
#include "Core/CNumberText.h"
#include "Tools/QrbPreset/TextEscape.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace qrbpreset {

namespace {

constexpr std::string_view kBits = "bits:";
/// What a state shows that has no name.
constexpr const char* kNameless = "Reserve";
/// More decimals than anybody writes by hand.
constexpr int kMaxDecimals = 6;
constexpr int kMaxStates = 256;

constexpr qrb::EValueStyle kShownStyles[] = {qrb::EValueStyle::normal, qrb::EValueStyle::exact};

bool isSame(double a, double b)
{
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

std::string withoutBlanks(std::string text)
{
    std::erase(text, ' ');
    return text;
}

} // namespace

std::string exactText(double value)
{
    if (!std::isfinite(value)) {
        const std::uint64_t bits = std::bit_cast<std::uint64_t>(value);
        std::string text(kBits);
        for (int shift = 60; shift >= 0; shift -= 4)
            text += "0123456789ABCDEF"[bits >> shift & 15];
        return text;
    }
    char text[40];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

std::optional<double> exactValue(const std::string& text)
{
    const char* const end = text.data() + text.size();
    if (text.starts_with(kBits)) {
        std::uint64_t bits = 0;
        const auto [stop, problem] = std::from_chars(text.data() + kBits.size(), end, bits, 16);
        const bool isGood = problem == std::errc() && stop == end && text.size() == kBits.size() + 16;
        return isGood ? std::optional(std::bit_cast<double>(bits)) : std::nullopt;
    }
    double value = 0.0;
    const auto [stop, problem] = std::from_chars(text.data(), end, value);
    const bool isGood = problem == std::errc() && stop == end && std::isfinite(value);
    return isGood ? std::optional(value) : std::nullopt;
}

std::string CNumberText::shown(double value) const
{
    const std::string exact = "=" + exactText(value);
    if (m_info == nullptr || !std::isfinite(value) || !isWithinBounds(value))
        return exact;
    for (const qrb::EValueStyle style : kShownStyles)
        if (const auto text = roundTrip(formatted(value, style), value))
            return *text;
    const qrb::CAudioParamConverter& converter = *component().converter;
    const bool isRatio = dynamic_cast<const qrb::CAudioParamConverterRatio*>(&converter) != nullptr;
    const double display =
        isRatio ? (value < 1.0 ? 1.0 / value : value)
                : converter.toDisplay(*m_info, m_component, converter.toNormal(*m_info, m_component, value));
    for (int decimals = 0; decimals <= kMaxDecimals && std::isfinite(display); ++decimals) {
        const std::string number = qrb::formatFixed(display, decimals).toUtf8();
        const std::string text = !isRatio ? number : value < 1.0 ? number + ":1" : "1:" + number;
        if (const auto entry = roundTrip(text, value))
            return *entry;
    }
    return withUnit(formatted(value, qrb::EValueStyle::normal)) + " " + exact;
}

bool CNumberText::read(const std::string& text, double& out, std::string& error) const
{
    if (m_info == nullptr) {
        error = "of a parameter that the product lacks only exact numbers are known, such as =0.5";
        return false;
    }
    if (readName(qrb::CString::fromUtf8(text), out))
        return true;
    CParsed parsed;
    if (!parse(text, parsed)) {
        error = "'" + text + "' is no value from " + range();
        return false;
    }
    // A converter limits what it reads; nobody means a value out of bounds, so that is better told.
    if (!isSame(parsed.unlimited, parsed.value) && !isWithinBounds(parsed.unlimited)) {
        error = "'" + text + "' is out of the range from " + range();
        return false;
    }
    out = parsed.value;
    return true;
}

bool CNumberText::isShownAs(const std::string& text, double value) const
{
    if (m_info == nullptr)
        return false;
    CParsed parsed;
    if (parse(text, parsed) && isSame(parsed.value, value))
        return true;
    const std::string plain = withoutBlanks(text);
    return std::any_of(std::begin(kShownStyles), std::end(kShownStyles), [&](qrb::EValueStyle style) {
        const std::string shown = formatted(value, style);
        return plain == withoutBlanks(shown) || plain == withoutBlanks(withUnit(shown));
    });
}

std::string CNumberText::range() const
{
    const qrb::CAudioParamInfo::CComponent& bounds = component();
    const auto style = qrb::EValueStyle::normal;
    return withUnit(formatted(bounds.min, style)) + " to " + withUnit(formatted(bounds.max, style));
}

const qrb::CAudioParamInfo::CComponent& CNumberText::component() const
{
    return m_info->components[static_cast<std::size_t>(m_component)];
}

std::string CNumberText::formatted(double value, qrb::EValueStyle style) const
{
    qrb::CString text;
    component().converter->formatValue(text, *m_info, m_component, value, nullptr, style);
    return text.toUtf8();
}

std::string CNumberText::withUnit(std::string text) const
{
    const std::string unit = component().converter->label().toUtf8();
    if (unit.empty())
        return text;
    if (text.ends_with('k')) // thousands belong to the unit: "4.00 kHz"
        return text.substr(0, text.size() - 1) + " k" + unit;
    return text + " " + unit;
}

bool CNumberText::isWithinBounds(double value) const
{
    return isSame(m_info->clamped(m_component, value), value);
}

bool CNumberText::readName(const qrb::CString& text, double& out) const
{
    // Before numbers are looked at: "3" may be the name of state 2.
    const qrb::CAudioParamInfo::CComponent& bounds = component();
    if (dynamic_cast<const qrb::CAudioParamConverterEnum*>(bounds.converter) == nullptr)
        return false;
    const double first = static_cast<double>(qrb::roundHalfAway(std::min(bounds.min, bounds.max)));
    const double last = std::min(std::max(bounds.min, bounds.max), first + kMaxStates);
    qrb::CString name;
    for (double state = first; state <= last; state += 1.0) {
        bounds.converter->formatValue(name, *m_info, m_component, state, nullptr, qrb::EValueStyle::normal);
        if (name == kNameless || name.compareNoCase(text) != 0)
            continue;
        out = state;
        return true;
    }
    return false;
}

bool CNumberText::parse(const std::string& text, CParsed& out) const
{
    const qrb::CAudioParamConverter& converter = *component().converter;
    std::string plain = text;
    const qrb::CString unit = converter.label();
    const qrb::CString whole = qrb::CString::fromUtf8(text);
    if (!unit.empty() && whole.length() > unit.length() &&
        whole.substr(whole.length() - unit.length()).compareNoCase(unit) == 0)
        plain = whole.substr(0, whole.length() - unit.length()).trimmed().toUtf8();
    for (const std::string& form : {text, plain, withoutBlanks(plain)}) {
        const qrb::CString bare = qrb::CString::fromUtf8(form);
        bool isRead = false;
        out.value = converter.parseValue(*m_info, m_component, bare, &isRead);
        if (!isRead)
            continue;
        out.unlimited = converter.parseBound(*m_info, m_component, bare, nullptr);
        return true;
    }
    return false;
}

std::optional<std::string> CNumberText::roundTrip(const std::string& text, double value) const
{
    std::string entry = withUnit(text);
    double read = 0.0;
    std::string error;
    if (this->read(entry, read, error) && isSame(read, value))
        return entry;
    return std::nullopt;
}

} // namespace qrbpreset
