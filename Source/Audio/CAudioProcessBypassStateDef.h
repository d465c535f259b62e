// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CObject.h"

#include <cstdint>
#include <optional>

namespace qrb {

/// Declared condition on one or two parameters, by which links and children of a process come and go.
class CAudioProcessBypassStateDef : public CObject {
public:
    /// "[a;b]" with "(" and ")" for ends that are left out, "*" for an open end, and a step: values are compared as
    /// integers after division by the step.
    struct CRange {
        std::int64_t lowest = INT64_MIN;
        std::int64_t highest = INT64_MAX;
        double step = 1.0;

        [[nodiscard]] bool contains(double value) const;
        /// False for a text that is no range.
        [[nodiscard]] static bool parse(const CString& text, CRange& out);
    };

    [[nodiscard]] CErrorPtr init() override;

    [[nodiscard]] int id() const { return m_id; }
    [[nodiscard]] const CString& param() const { return m_param; }
    /// Empty for a condition on one parameter.
    [[nodiscard]] const CString& andParam() const { return m_andParam; }
    /// Whether the state holds at these values; without second parameter `andValue` does not count.
    [[nodiscard]] bool holds(double value, double andValue) const;

private:
    int m_id = 0;
    CString m_param;
    CString m_andParam;
    double m_value = 0.0;
    double m_andValue = 0.0;
    std::optional<CRange> m_range;
    std::optional<CRange> m_andRange;
    bool m_isInverted = false;
};

} // namespace qrb
