// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace qrb {

class CAudioParamCollector;

/// Marks the length of work on many parameters of an instance: calls that wait for the parameters to be free wait for
/// its end. Locks nothing by itself.
class CAudioPresetGuard {
public:
    [[nodiscard]] explicit CAudioPresetGuard(CAudioParamCollector& collector);
    ~CAudioPresetGuard();
    CAudioPresetGuard(const CAudioPresetGuard&) = delete;
    CAudioPresetGuard& operator=(const CAudioPresetGuard&) = delete;

private:
    CAudioParamCollector& m_collector;
};

} // namespace qrb
