// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamConverter.h"
#include "Audio/CAudioParamInfo.h"

#include <optional>
#include <string>

namespace qrbpreset {

/// How a number of one component is read and shown: by the parameter's converter, as a user does, with the unit behind it
/// or without. A null info stands for a parameter that the product lacks: its numbers are told exactly.
class CNumberText {
public:
    CNumberText(const qrb::CAudioParamInfo* info, int component) : m_info(info), m_component(component) {}

    /// One entry of a list of values, with "=" and the exact number behind the text or in its place where the text alone
    /// would not give the same bits back.
    [[nodiscard]] std::string shown(double value) const;
    /// Reads a text without an exact number; false with the reason in `error`.
    [[nodiscard]] bool read(const std::string& text, double& out, std::string& error) const;
    /// Whether `text` is what stands beside that exact number.
    [[nodiscard]] bool isShownAs(const std::string& text, double value) const;
    /// The bounds as texts, with the unit: "-12.0 dB to 12.0 dB".
    [[nodiscard]] std::string range() const;

private:
    struct CParsed {
        double value = 0.0;
        double unlimited = 0.0;
    };

    [[nodiscard]] const qrb::CAudioParamInfo::CComponent& component() const;
    [[nodiscard]] std::string formatted(double value, qrb::EValueStyle style) const;
    [[nodiscard]] std::string withUnit(std::string text) const;
    [[nodiscard]] bool isWithinBounds(double value) const;
    [[nodiscard]] bool readName(const qrb::CString& text, double& out) const;
    [[nodiscard]] bool parse(const std::string& text, CParsed& out) const;
    [[nodiscard]] std::optional<std::string> roundTrip(const std::string& text, double value) const;

    const qrb::CAudioParamInfo* m_info;
    int m_component;
};

/// The shortest decimal number that is exactly this value; "bits:" and 16 hexadecimal digits for what is no number.
[[nodiscard]] std::string exactText(double value);
[[nodiscard]] std::optional<double> exactValue(const std::string& text);

} // namespace qrbpreset
