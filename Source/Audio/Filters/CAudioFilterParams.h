// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CQrbStdAllocator.h"
#include "Core/CString.h"

#include <span>

namespace qrb {

/// What a designer is told: values by name. Gains are linear factors, frequencies in Hz, bandwidths in octaves (or a Q
/// where the designer says so), lengths in seconds.
///
/// "freq", "gain" and "bw" have the places 0, 1 and 2 of the vector whether or not they are there, so that lists of
/// factors by place mean the same for every user; other names follow in the order in which they are added.
class CAudioFilterParams {
public:
    static constexpr std::size_t kFreq = 0;
    static constexpr std::size_t kGain = 1;
    static constexpr std::size_t kBandwidth = 2;

    CAudioFilterParams();

    void clear();
    /// Adds a name, or finds it; the place of its value.
    std::size_t add(const CString& name);
    void set(const CString& name, double value) { setValue(add(name), value); }
    /// Adds values that no name leads to, behind all others.
    void appendUnnamed(std::span<const double> values) { m_values.appendAll(values); }
    void setValue(std::size_t place, double value) { m_values[place] = value; }

    [[nodiscard]] bool has(const CString& name) const { return m_places.find(name) != m_places.end(); }
    /// False, with `out` untouched, for a name that is missing.
    [[nodiscard]] bool get(const CString& name, double& out) const;
    /// All values by place; 0 at the places of fixed names that are missing.
    [[nodiscard]] std::span<double> values() { return m_values.span(); }
    [[nodiscard]] std::span<const double> values() const { return m_values.span(); }

private:
    CMap<CString, std::size_t> m_places;
    CArray<double, 8> m_values;
};

} // namespace qrb
