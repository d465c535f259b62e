// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"

namespace qrb {

/// Holds the peak of the last periods: a new one at once, an old one until it has lasted its time, then the highest of
/// the periods since. "Highest" is lowest for a hold of minima.
class CPeakHold {
public:
    /// Longest hold in periods.
    static constexpr int kMaxLength = 1 << 16;

    /// Starts anew: `length` periods, all at `value`. Memory is taken only for more periods than ever before.
    void start(int length, double value, bool isOfMinima);
    /// Ends a period with this peak.
    void add(double peak);
    [[nodiscard]] double held() const { return m_held; }

private:
    [[nodiscard]] bool isHigherOrSame(double a, double b) const { return m_isOfMinima ? a <= b : a >= b; }
    void scan();

    CArray<double, 0> m_ring;
    int m_position = 0; ///< where the next peak goes; older ones follow upwards
    int m_age = 0;      ///< periods that the held peak has left
    double m_held = 0.0;
    bool m_isOfMinima = false;
};

} // namespace qrb
